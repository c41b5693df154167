// Puts the page together in a folder: bundle.mjs FOLDER MODULE_FOLDER. Fails when it has become too large.
import {build, transform} from "esbuild";
import {copyFileSync, existsSync, mkdirSync, readFileSync, readdirSync, statSync, writeFileSync} from "node:fs";
import {posix} from "node:path";
import {gzipSync} from "node:zlib";

const largest = 600_000; // bytes, compressed
const [folder, moduleFolder] = process.argv.slice(2);
const gallery = "../examples";

// The source, what it includes, and what else the command line names.
function filesOf(source, words) {
  const files = {};
  const folders = words.flatMap((word, i) => (words[i - 1] === "-I" ? [word] : []));
  const open = [source, ...words];
  for (const name of open) {
    if (name in files || !existsSync(`${gallery}/${name}`) || statSync(`${gallery}/${name}`).isDirectory()) continue;
    files[name] = readFileSync(`${gallery}/${name}`, "utf8");
    for (const [, path] of files[name].matchAll(/^[ \t]*\.include[ \t]+"([^"]+)"/gim)) {
      open.push(...[posix.dirname(name), ...folders].map((where) => posix.join(where, path)));
    }
  }
  return files;
}

function exampleOf(source) {
  const text = readFileSync(`${gallery}/${source}`, "utf8");
  const commandLine = /^; Assemble: kiln-as (.*)$/m.exec(text)[1];
  return {
    title: `${source.replace(/\.asm$/, "")}: ${/^; (.*)$/m.exec(text)[1]}`,
    commandLine,
    files: filesOf(source, commandLine.split(/\s+/)),
  };
}

mkdirSync(folder, {recursive: true});
await build({
  entryPoints: {main: "src/main.ts", editing: "src/editing_worker.ts", running: "src/running_worker.ts"},
  outdir: folder,
  bundle: true,
  minify: true,
  format: "esm",
  target: "es2022",
  logLevel: "warning",
});
for (const file of ["index.html", "style.css"]) copyFileSync(`page/${file}`, `${folder}/${file}`);
copyFileSync(`${moduleFolder}/kiln.wasm`, `${folder}/kiln.wasm`);
const loader = await transform(readFileSync(`${moduleFolder}/kiln.mjs`, "utf8"), {minify: true, format: "esm"});
writeFileSync(`${folder}/kiln.mjs`, loader.code);
const sources = readdirSync(gallery).filter((name) => name.endsWith(".asm")).sort();
writeFileSync(`${folder}/examples.json`, JSON.stringify(sources.map(exampleOf)));

let total = 0;
for (const file of readdirSync(folder).sort()) {
  const size = gzipSync(readFileSync(`${folder}/${file}`), {level: 9}).length;
  total += size;
  console.log(`${String(size).padStart(8)}  ${file}`);
}
console.log(`${String(total).padStart(8)}  compressed, of ${largest}`);
if (total > largest) throw new Error("the page is too large");
