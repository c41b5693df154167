// Starts kiln-lsp with the first source of kiln-as, and gives it files and settings.
import * as vscode from "vscode";
import {LanguageClient, LanguageClientOptions, ServerOptions} from "vscode-languageclient/node";
import {claimDocuments} from "./claim";
import {TaskProvider} from "./tasks";

let client: LanguageClient | undefined;

export function activate(context: vscode.ExtensionContext): void {
  context.subscriptions.push(
    vscode.workspace.onDidOpenTextDocument(startServer),
    vscode.workspace.onDidChangeConfiguration((change) => {
      if (change.affectsConfiguration("kiln.server.path")) void restartServer();
    }),
    vscode.commands.registerCommand("kiln.showReferences", showReferences),
    vscode.tasks.registerTaskProvider("kiln", new TaskProvider()),
    claimDocuments(),
  );
  vscode.workspace.textDocuments.forEach(startServer);
}

export async function deactivate(): Promise<void> {
  await client?.stop();
}

// The command of the server's code lens. The arguments are those of the protocol.
async function showReferences(uri: string, place: {line: number; character: number}): Promise<void> {
  const position = new vscode.Position(place.line, place.character);
  await vscode.commands.executeCommand("editor.action.findReferences", vscode.Uri.parse(uri), position);
}

function isOurs(document: vscode.TextDocument): boolean {
  return document.uri.scheme === "file" && ["kiln", "kiln-project"].includes(document.languageId);
}

function startServer(document: vscode.TextDocument): void {
  if (client !== undefined || !isOurs(document)) return;
  const command = vscode.workspace.getConfiguration("kiln").get("server.path", "kiln-lsp");
  client = new LanguageClient("kiln", "kiln-lsp", serverOptions(command), clientOptions());
  client.start().catch((error: unknown) => {
    const reason = error instanceof Error ? error.message : String(error);
    void vscode.window.showErrorMessage(`kiln-as: cannot start ${command}: ${reason}. The setting is kiln.server.path.`);
  });
}

async function restartServer(): Promise<void> {
  const old = client;
  client = undefined;
  // A server that never started cannot be stopped.
  await old?.dispose().catch(() => undefined);
  vscode.workspace.textDocuments.forEach(startServer);
}

function serverOptions(command: string): ServerOptions {
  return {command, args: []};
}

function clientOptions(): LanguageClientOptions {
  const sources = ["kiln", "kiln-project"].map((language) => ({scheme: "file", language}));
  return {
    documentSelector: sources,
    initializationOptions: {inlayHints: vscode.workspace.getConfiguration("kiln").get("inlayHints", true)},
    synchronize: {
      configurationSection: "kiln",
      fileEvents: vscode.workspace.createFileSystemWatcher("**/{.kiln,*.asm,*.inc,*.s,*.lnk,*.sym}"),
    },
  };
}
