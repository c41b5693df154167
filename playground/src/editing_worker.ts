// Keeps the sources: answers the editor, and assembles.
import {Kiln} from "./module.js";
import type {Assembled, FromEditing, ServerMessage, Summary, ToEditing} from "./protocol.js";

// Text that is typed fast is looked at once.
const pause = 30; // milliseconds

const kiln = Kiln.load();
let isSettling = false;

function send(message: FromEditing): void {
  self.postMessage(message);
}

function settle(to: Kiln): void {
  isSettling = false;
  const text = to.takeText((reply) => to.exports._settleServer(reply));
  send({kind: "server", messages: JSON.parse(text) as ServerMessage[]});
}

function receive(to: Kiln, message: object): void {
  to.giveText(JSON.stringify(message), to.exports._receiveMessage);
  if ("id" in message) return settle(to);
  if (isSettling) return;
  isSettling = true;
  setTimeout(() => isSettling && settle(to), pause);
}

function setFile(to: Kiln, path: string, text: string | null): void {
  to.giveText(path, (name, nameSize) => {
    if (text === null) return to.exports._removeFile(name, nameSize);
    to.giveText(text, (bytes, size) => to.exports._addFile(name, nameSize, bytes, size));
  });
}

function assemble(to: Kiln, request: Extract<ToEditing, {kind: "assemble"}>): Assembled {
  let summary = "";
  to.giveText(request.commandLine, (line, size) => {
    summary = to.takeText((reply) => to.exports._assembleProgram(line, size, reply));
  });
  const isMap = request.view === "map";
  const render = isMap ? to.exports._mapText : to.exports._cycleListing;
  return {
    kind: "assembled",
    id: request.id,
    summary: JSON.parse(summary) as Summary,
    file: to.take((reply) => to.exports._programFile(reply)),
    view: request.view,
    text: request.view === "none" ? "" : to.takeText((reply) => render(reply)),
    picture: isMap ? to.takeText((reply) => to.exports._mapPicture(reply)) : "",
  };
}

async function handle(message: ToEditing): Promise<void> {
  const to = await kiln;
  if (message.kind === "server") receive(to, message.message);
  if (message.kind === "file") setFile(to, message.path, message.text);
  if (message.kind === "assemble") send(assemble(to, message));
}

self.addEventListener("message", (event: MessageEvent<ToEditing>) => void handle(event.data));
void kiln.then(() => send({kind: "ready"}));
