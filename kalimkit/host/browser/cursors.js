// What the pointer looks like, in the order of ui::Cursor.
export const cursors = ['default', 'pointer', 'crosshair', 'text', 'move', 'ns-resize', 'ew-resize', 'nwse-resize',
  'nesw-resize', 'alias', 'grab', 'grabbing', 'not-allowed'];
