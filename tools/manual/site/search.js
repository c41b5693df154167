// Searches all pages, with the index in search-index.js: from a file, a page may load scripts but no data. Words are
// found anywhere in the text, as names such as .org, $D301 and _klb_0 are not words of a language.
"use strict";

const up = document.currentScript.dataset.up;
const field = document.getElementById("search");
const list = document.getElementById("found");
const mostFound = 40;

const folded = sections.map(([, title, heading, text]) => [title, heading, text].map((part) => part.toLowerCase()));

// How well a section fits: 0 when a word is missing. A word in the heading counts most, and most of all at its start.
function score(index, words) {
  const [title, heading, text] = folded[index];
  let sum = 0;
  for (const word of words) {
    const times = text.split(word).length - 1;
    if (heading === word) sum += 40;
    if (heading.startsWith(word)) sum += 20;
    if (heading.includes(word)) sum += 20;
    if (title.includes(word)) sum += 5;
    if (!times && !heading.includes(word) && !title.includes(word)) return 0;
    sum += Math.min(times, 5);
  }
  return sum;
}

// The text around the first of the words, with all of them marked.
function excerpt(index, words) {
  const text = sections[index][3];
  const places = words.map((word) => folded[index][2].indexOf(word)).filter((place) => place >= 0);
  const begin = text.lastIndexOf(" ", Math.max(0, Math.min(...places, text.length) - 40)) + 1;
  const line = document.createElement("span");
  const piece = (begin ? "… " : "") + text.slice(begin, begin + 160).replace(/\s\S*$/, " …");
  const pattern = new RegExp("(" + words.map((word) => word.replace(/[^\w\s]/g, "\\$&")).join("|") + ")", "i");
  piece.split(pattern).forEach((part, number) => {
    line.append(number % 2 ? Object.assign(document.createElement("mark"), {textContent: part}) : part);
  });
  return line;
}

function entry(index, words) {
  const [place, title, heading] = sections[index];
  const link = Object.assign(document.createElement("a"), {href: up + place});
  const name = heading === title ? title : `${title}: ${heading}`;
  const head = Object.assign(document.createElement("b"), {textContent: name});
  link.append(head, excerpt(index, words));
  link.addEventListener("click", () => (list.hidden = true));
  const item = document.createElement("li");
  item.append(link);
  return item;
}

function search() {
  const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
  const found = words.length ? sections.map((_, index) => [score(index, words), index]).filter(([sum]) => sum) : [];
  found.sort((a, b) => b[0] - a[0] || a[1] - b[1]);
  const entries = found.slice(0, mostFound).map(([, index]) => entry(index, words));
  const nothing = Object.assign(document.createElement("li"), {textContent: "Nothing found."});
  list.replaceChildren(...(entries.length ? entries : [nothing]));
  list.hidden = !words.length;
}

field.addEventListener("input", search);
field.addEventListener("keydown", (event) => {
  if (event.key === "Enter") list.querySelector("a")?.click();
});
document.addEventListener("keydown", (event) => {
  if (event.key === "/" && document.activeElement !== field) {
    event.preventDefault();
    field.focus();
  } else if (event.key === "Escape") {
    list.hidden = true;
  }
});
