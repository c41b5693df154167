// Makes dist/: the extension with its libraries in one file, and the grammar that other editors use, too.
import {build} from "esbuild";
import {copyFileSync} from "node:fs";

await build({
  entryPoints: ["src/extension.ts"],
  outfile: "dist/extension.js",
  bundle: true,
  minify: true,
  platform: "node",
  target: "node18",
  format: "cjs",
  external: ["vscode"],
  logLevel: "warning",
});
copyFileSync("../textmate/kiln.tmLanguage.json", "dist/kiln.tmLanguage.json");
