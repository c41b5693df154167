// Linked into the WebAssembly module, which would otherwise have an environment of its own, and take its standard streams
// for a terminal.
Module["preRun"] = () => Object.assign(ENV, process["env"]);
Module["onRuntimeInitialized"] = () => {
  for (const stream of FS.streams.slice(0, 3)) stream.tty = require("tty").isatty(stream.nfd);
};
