// The panes beside the editor: tabs, of which one is shown.
export class Panes {
  private readonly tabs: HTMLElement[];

  constructor(
    list: HTMLElement,
    private readonly shown: (id: string) => void,
  ) {
    this.tabs = [...list.querySelectorAll<HTMLElement>("[role=tab]")];
    for (const tab of this.tabs) tab.addEventListener("click", () => this.show(paneOf(tab)));
    list.addEventListener("keydown", (event) => this.move(event));
  }

  show(id: string): void {
    for (const tab of this.tabs) {
      const isShown = paneOf(tab) === id;
      tab.ariaSelected = String(isShown);
      tab.tabIndex = isShown ? 0 : -1;
      const pane = document.getElementById(paneOf(tab));
      if (pane !== null) pane.hidden = !isShown;
    }
    this.shown(id);
  }

  private move(event: KeyboardEvent): void {
    const step = {ArrowLeft: -1, ArrowRight: 1}[event.key];
    if (step === undefined) return;
    const current = this.tabs.findIndex((tab) => tab.ariaSelected === "true");
    const next = this.tabs[(current + step + this.tabs.length) % this.tabs.length];
    event.preventDefault();
    if (next === undefined) return;
    this.show(paneOf(next));
    next.focus();
  }
}

function paneOf(tab: HTMLElement): string {
  return tab.getAttribute("aria-controls") ?? "";
}
