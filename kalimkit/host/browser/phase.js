// What becomes of a finger, as the module counts it.
export const Phase = { began: 0, moved: 1, ended: 2, cancelled: 3 };
