// The tasks "assemble" and "check", with problem matchers. No shell is involved: file names need no quotes.
import {existsSync} from "node:fs";
import {join} from "node:path";
import * as vscode from "vscode";

interface Definition extends vscode.TaskDefinition {
  task: string;
  arguments?: string[];
}

const programs = new Map([
  ["assemble", "kiln-as"],
  ["check", "kiln-check"],
]);

export class TaskProvider implements vscode.TaskProvider {
  provideTasks(): vscode.Task[] {
    const folders = vscode.workspace.workspaceFolders ?? [];
    return folders.flatMap((folder) => [...programs.keys()].flatMap((task) => makeTask({type: "kiln", task}, folder) ?? []));
  }

  // A task from tasks.json, which has the definition alone.
  resolveTask(task: vscode.Task): vscode.Task | undefined {
    const folder = typeof task.scope === "object" ? task.scope : vscode.workspace.workspaceFolders?.[0];
    return makeTask(task.definition as Definition, folder);
  }
}

function makeTask(definition: Definition, folder: vscode.WorkspaceFolder | undefined): vscode.Task | undefined {
  const program = programs.get(definition.task);
  if (program === undefined || folder === undefined) return undefined;
  const list = definition.arguments ?? defaultArguments(definition.task, folder.uri.fsPath);
  const execution = new vscode.ProcessExecution(program, list, {cwd: folder.uri.fsPath});
  const task = new vscode.Task(definition, folder, definition.task, "kiln-as", execution, `$${program}`);
  task.group = vscode.TaskGroup.Build;
  return task;
}

// kiln-check without an input checks every line of the .kiln.
function defaultArguments(task: string, folder: string): string[] {
  return task === "check" && existsSync(join(folder, ".kiln")) ? [] : ["${file}"];
}
