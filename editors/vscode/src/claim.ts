// Other assemblers use the endings of kiln-as, too: a file is taken only where a .kiln or the setting says so.
import {existsSync} from "node:fs";
import {dirname, extname, join} from "node:path";
import * as vscode from "vscode";

// Takes the open documents, and those that are opened later. Each once: the user may give it another language.
export function claimDocuments(): vscode.Disposable {
  const seen = new Set<string>();
  const claim = (document: vscode.TextDocument): void => {
    const uri = document.uri.toString();
    if (seen.has(uri) || !mayBeSource(document)) return;
    seen.add(uri);
    if (isClaimed(document.fileName)) void vscode.languages.setTextDocumentLanguage(document, "kiln");
  };
  vscode.workspace.textDocuments.forEach(claim);
  return vscode.workspace.onDidOpenTextDocument(claim);
}

function mayBeSource(document: vscode.TextDocument): boolean {
  if (document.uri.scheme !== "file" || document.languageId === "kiln") return false;
  const ending = extname(document.fileName).toLowerCase();
  return ending === ".asm" || (ending === ".inc" && /^plaintext$|asm/.test(document.languageId));
}

function isClaimed(path: string): boolean {
  const claim = vscode.workspace.getConfiguration("kiln").get<string>("claim", "project");
  return claim === "always" || (claim === "project" && hasProject(dirname(path)));
}

// Whether the folder, or one above, has a .kiln.
function hasProject(folder: string): boolean {
  if (existsSync(join(folder, ".kiln"))) return true;
  const above = dirname(folder);
  return above !== folder && hasProject(above);
}
