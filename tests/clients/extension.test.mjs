// The parts of the VS Code extension that need no server, with a stand-in for the editor: which files it takes, and
// what its tasks run. Run by tests/clients/run.
import assert from "node:assert/strict";
import {mkdirSync, mkdtempSync, rmSync, writeFileSync} from "node:fs";
import {createRequire} from "node:module";
import {tmpdir} from "node:os";
import {dirname, join} from "node:path";
import {after, test} from "node:test";
import {fileURLToPath} from "node:url";

const extension = join(dirname(fileURLToPath(import.meta.url)), "../../editors/vscode");
const require = createRequire(join(extension, "package.json"));
const folder = mkdtempSync(join(tmpdir(), "kiln-extension-"));
const project = join(folder, "project");
const other = join(folder, "other");
mkdirSync(join(project, "sub"), {recursive: true});
mkdirSync(other);
writeFileSync(join(project, ".kiln"), "main.asm\n");
after(() => rmSync(folder, {recursive: true}));

// A source of the extension, whose editor is `vscode`.
async function load(source, vscode) {
  const {outputFiles} = await require("esbuild").build({
    entryPoints: [join(extension, "src", source)],
    bundle: true,
    platform: "node",
    format: "cjs",
    external: ["vscode"],
    write: false,
  });
  const module = {exports: {}};
  const find = (name) => (name === "vscode" ? vscode : require(name));
  new Function("module", "exports", "require", outputFiles[0].text)(module, module.exports, find);
  return module.exports;
}

// The files, "path language", that the extension takes with this setting.
async function claimed(setting, files) {
  const taken = [];
  const textDocuments = files.map((file) => {
    const [fileName, languageId] = file.split(" ");
    return {fileName, languageId, uri: {scheme: "file", toString: () => fileName}};
  });
  const {claimDocuments} = await load("claim.ts", {
    workspace: {
      textDocuments,
      onDidOpenTextDocument: () => ({}),
      getConfiguration: () => ({get: (_, standard) => setting ?? standard}),
    },
    languages: {setTextDocumentLanguage: (document) => taken.push(document.fileName)},
  });
  claimDocuments();
  return taken;
}

test("files are taken where a .kiln or the setting says so", async () => {
  const ours = [`${project}/main.asm plaintext`, `${project}/sub/part.INC asm-collection`];
  const theirs = [`${other}/main.asm plaintext`];
  const never = [`${project}/page.inc php`, `${project}/notes.txt plaintext`, `${project}/done.asm kiln`];
  const paths = (files) => files.map((file) => file.split(" ")[0]);
  assert.deepEqual(await claimed(undefined, [...ours, ...theirs, ...never]), paths(ours));
  assert.deepEqual(await claimed("always", [...ours, ...theirs, ...never]), paths([...ours, ...theirs]));
  assert.deepEqual(await claimed("never", [...ours, ...theirs, ...never]), []);
});

// The command lines of the tasks in a folder, and of one in tasks.json.
async function taskLines(path, definition) {
  class ProcessExecution {
    constructor(program, list) {
      this.line = [program, ...list].join(" ");
    }
  }
  class Task {
    constructor(_, __, name, source, execution, matcher) {
      this.text = `${source}: ${name}: ${execution.line} ${matcher}`;
    }
  }
  const workspaceFolders = [{uri: {fsPath: path}}];
  const vscode = {workspace: {workspaceFolders}, ProcessExecution, Task, TaskGroup: {Build: 1}};
  const {TaskProvider} = await load("tasks.ts", vscode);
  const provider = new TaskProvider();
  const tasks = definition ? [provider.resolveTask({definition, scope: workspaceFolders[0]})] : provider.provideTasks();
  return tasks.map((task) => task?.text);
}

test("tasks run the programs on the file, on the .kiln, or on what tasks.json says", async () => {
  assert.deepEqual(await taskLines(other), [
    "kiln-as: assemble: kiln-as ${file} $kiln-as",
    "kiln-as: check: kiln-check ${file} $kiln-check",
  ]);
  assert.deepEqual(await taskLines(project), [
    "kiln-as: assemble: kiln-as ${file} $kiln-as",
    "kiln-as: check: kiln-check $kiln-check",
  ]);
  assert.deepEqual(await taskLines(project, {type: "kiln", task: "assemble", arguments: ["-L", "a.lnk", "b.asm"]}), [
    "kiln-as: assemble: kiln-as -L a.lnk b.asm $kiln-as",
  ]);
  assert.deepEqual(await taskLines(project, {type: "kiln", task: "erase"}), [undefined]);
});
