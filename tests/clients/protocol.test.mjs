// The libraries that the extension for VS Code is made of, at work with kiln-lsp; and what its manifest promises. Run by
// tests/clients/run.
import assert from "node:assert/strict";
import {spawn, spawnSync} from "node:child_process";
import {cpSync, mkdtempSync, readFileSync, rmSync, writeFileSync} from "node:fs";
import {createRequire} from "node:module";
import {tmpdir} from "node:os";
import {dirname, join} from "node:path";
import {after, before, test} from "node:test";
import {fileURLToPath, pathToFileURL} from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const extension = join(here, "../../editors/vscode");
const require = createRequire(join(extension, "package.json"));
const protocol = require("vscode-languageserver-protocol/node");

const server = process.env.KILN_LSP;
const folder = mkdtempSync(join(tmpdir(), "kiln-lsp-"));
const uri = pathToFileURL(join(folder, "main.asm")).href;
let child, connection, capabilities;
const ended = () => new Promise((resolve) => child.on("exit", resolve));

// The next diagnostics of the document, as "line:column text" from 1, with those that arrived before left out.
function nextFindings() {
  return new Promise((resolve) => {
    const listener = connection.onNotification(protocol.PublishDiagnosticsNotification.type, (params) => {
      if (params.uri !== uri) return;
      listener.dispose();
      resolve(
        params.diagnostics.map(({range, message}) => `${range.start.line + 1}:${range.start.character + 1} ${message}`),
      );
    });
  });
}

function change(line, text) {
  const range = {start: {line, character: 0}, end: {line: line + 1, character: 0}};
  return connection.sendNotification(protocol.DidChangeTextDocumentNotification.type, {
    textDocument: {uri, version: 2},
    contentChanges: [{range, text: `${text}\n`}],
  });
}

const everything = {start: {line: 0, character: 0}, end: {line: 100, character: 0}};

// Five numbers for each token: the line and the column after the last token, the length, the type and the modifiers.
function tokensOf(data, text) {
  const {tokenTypes, tokenModifiers} = capabilities.semanticTokensProvider.legend;
  const lines = text.split("\n");
  const tokens = [];
  let line = 0;
  let column = 0;
  for (let i = 0; i < data.length; i += 5) {
    const [lineStep, columnStep, length, type, modifiers] = data.slice(i, i + 5);
    line += lineStep;
    column = lineStep === 0 ? column + columnStep : columnStep;
    const names = [tokenTypes[type], ...tokenModifiers.filter((_, bit) => modifiers & (1 << bit))];
    tokens.push(`${lines[line].slice(column, column + length)}: ${names.join(" ")}`);
  }
  return tokens;
}

before(async () => {
  cpSync(join(here, "program"), folder, {recursive: true});
  child = spawn(server, [], {stdio: ["pipe", "pipe", "inherit"]});
  connection = protocol.createProtocolConnection(
    new protocol.StreamMessageReader(child.stdout),
    new protocol.StreamMessageWriter(child.stdin),
  );
  connection.listen();
  const workspaceFolders = [{uri: pathToFileURL(folder).href, name: "program"}];
  const answer = await connection.sendRequest(protocol.InitializeRequest.type, {
    processId: process.pid,
    rootUri: workspaceFolders[0].uri,
    workspaceFolders,
    capabilities: {},
    initializationOptions: {inlayHints: true},
  });
  assert.equal(answer.serverInfo.name, "kiln-lsp");
  capabilities = answer.capabilities;
  await connection.sendNotification(protocol.InitializedNotification.type, {});
  await connection.sendNotification(protocol.DidOpenTextDocumentNotification.type, {
    textDocument: {uri, languageId: "kiln", version: 1, text: readFileSync(join(folder, "main.asm"), "utf8")},
  });
});

after(() => {
  child.kill();
  rmSync(folder, {recursive: true});
});

test("diagnostics come and go", async () => {
  const findings = nextFindings();
  await change(4, "        JSR drew");
  assert.deepEqual(await findings, ["5:13 'drew' is not defined: it counts as 0\ndid you mean 'draw'?"]);
  const nothing = nextFindings();
  await change(4, "        JSR draw");
  assert.deepEqual(await nothing, []);
});

test("inlay hints: addresses, bytes, cycles", async () => {
  const hints = await connection.sendRequest(protocol.InlayHintRequest.type, {textDocument: {uri}, range: everything});
  assert.deepEqual(
    hints.map(({position, label}) => `${position.line + 1}: ${label}`),
    [
      "3: 2000: A9 41  2",
      "4: 2002: 8D 1A D0  4",
      "5: 2005: 20 0B 20  6",
      "6: 2008: 4C 08 20  3",
    ],
  );
});

test("semantic tokens: what each word is", async () => {
  const {data} = await connection.sendRequest(protocol.SemanticTokensRequest.type, {textDocument: {uri}});
  assert.deepEqual(tokensOf(data, readFileSync(join(folder, "main.asm"), "utf8")), [
    "; A program in two files: comment",
    ".org: decorator",
    "$2000: number",
    "start: function definition",
    "LDA: keyword",
    "65: number",
    "STA: keyword",
    "COLBK: variable defaultLibrary",
    "JSR: keyword",
    "draw: function",
    ".loop: function definition local",
    "JMP: keyword",
    ".loop: function local",
    ".include: decorator",
    "lib.inc: string",
  ]);
});

test("shutdown and exit", async () => {
  const status = ended();
  assert.equal(await connection.sendRequest(protocol.ShutdownRequest.type), null);
  await connection.sendNotification(protocol.ExitNotification.type);
  assert.equal(await status, 0);
});

const manifest = JSON.parse(readFileSync(join(extension, "package.json"), "utf8"));

// What the extension's problem matcher reads in the output of the program, for main.asm with a line more.
function matched(program, line) {
  const {regexp, ...groups} = manifest.contributes.problemMatchers.find(({name}) => name === program).pattern;
  const cwd = mkdtempSync(join(tmpdir(), "kiln-task-"));
  writeFileSync(join(cwd, "main.asm"), `        .org $2000\n${line}\n`);
  const run = spawnSync(join(dirname(server), program), ["main.asm"], {cwd, encoding: "utf8"});
  rmSync(cwd, {recursive: true});
  const found = (run.stdout + run.stderr).split("\n").flatMap((text) => {
    const match = new RegExp(regexp).exec(text);
    return match === null ? [] : [match];
  });
  return found.map((match) => Object.entries(groups).map(([name, group]) => `${name} ${match[group]}`).join(", "));
}

test("problem matchers read the messages of the tasks", () => {
  assert.deepEqual(matched("kiln-check", "        JSR nowhere"), [
    "file main.asm, line 2, column 13, severity warning, message 'nowhere' is not defined: it counts as 0, code undefined",
  ]);
  assert.deepEqual(matched("kiln-as", "twice:  NOP\ntwice:  NOP"), [
    "severity error, file main.asm, line 3, message duplicate label 'twice'",
  ]);
});
