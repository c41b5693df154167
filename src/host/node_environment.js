// Linked into the WebAssembly module, which would otherwise have an environment of its own.
Module["preRun"] = () => Object.assign(ENV, process["env"]);
