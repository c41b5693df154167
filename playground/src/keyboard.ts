// The keys and buttons that the machine gets.
import type {Input} from "./protocol.js";

const up = 1, down = 2, left = 4, right = 8;
const joystick: Record<string, number> = {ArrowUp: up, ArrowDown: down, ArrowLeft: left, ArrowRight: right};
const consoleKeys: Record<string, number> = {F4: 1, F3: 2, F2: 4}; // START, SELECT, OPTION
const triggerKey = "Space";

// The keyboard's codes, by what the keys are called here.
const codes = new Map<string, number>();
const rows: [string, number[]][] = [
  ["abcdefghijklmnopqrstuvwxyz", [63, 21, 18, 58, 42, 56, 61, 57, 13, 1, 5, 0, 37, 35, 8, 10, 47, 40, 62, 45, 11, 16, 46, 22, 43, 23]],
  ["0123456789", [50, 31, 30, 26, 24, 29, 27, 51, 53, 48]],
  [",./;=-+*<>", [32, 34, 38, 2, 15, 14, 6, 7, 54, 55]],
];
for (const [characters, numbers] of rows) {
  [...characters].forEach((character, i) => codes.set(character, numbers[i] ?? 0));
}
const named: Record<string, number> = {Enter: 12, Backspace: 52, " ": 33};

export class Keyboard {
  private held = 0;
  private heldConsole = 0;
  private trigger = false;

  constructor(private readonly type: (code: number) => void) {}

  get input(): Input {
    return {stick: 15 & ~this.held, trigger: this.trigger, consoleKeys: 7 & ~this.heldConsole};
  }

  // The keys go to the machine while this has the focus. Tab and Escape lead out of it.
  listen(place: HTMLElement): void {
    place.addEventListener("keydown", (event) => this.press(event));
    place.addEventListener("keyup", (event) => this.hold(event.code, false));
    place.addEventListener("blur", () => this.release());
  }

  // A button of the page: it is held as long as it is pressed.
  connect(button: HTMLElement, code: string): void {
    const hold = (isHeld: boolean) => (event: Event) => {
      if (event instanceof KeyboardEvent && event.key !== "Enter" && event.key !== " ") return;
      this.hold(code, isHeld);
    };
    for (const name of ["pointerdown", "keydown"]) button.addEventListener(name, hold(true));
    for (const name of ["pointerup", "pointerleave", "pointercancel", "keyup", "blur"]) {
      button.addEventListener(name, hold(false));
    }
    button.addEventListener("contextmenu", (event) => event.preventDefault());
  }

  private press(event: KeyboardEvent): void {
    if (event.key === "Tab" || event.key === "Escape" || event.ctrlKey || event.metaKey || event.altKey) return;
    const code = named[event.key] ?? codes.get(event.key.toLowerCase());
    const isHeld = this.hold(event.code, true);
    if (!event.repeat && code !== undefined) this.type(event.shiftKey ? code | 0x40 : code);
    if (isHeld || code !== undefined) event.preventDefault();
  }

  // False when the key is none of these.
  private hold(code: string, isHeld: boolean): boolean {
    const direction = joystick[code] ?? 0, key = consoleKeys[code] ?? 0;
    this.held = isHeld ? this.held | direction : this.held & ~direction;
    this.heldConsole = isHeld ? this.heldConsole | key : this.heldConsole & ~key;
    if (code === triggerKey) this.trigger = isHeld;
    return direction !== 0 || key !== 0 || code === triggerKey;
  }

  private release(): void {
    this.held = this.heldConsole = 0;
    this.trigger = false;
  }
}
