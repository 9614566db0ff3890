// The development server would put the scripts elsewhere, and the module is found beside them.
export default {
  optimizeDeps: { exclude: ['kalimkit'] },
};
