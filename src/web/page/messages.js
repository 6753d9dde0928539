// The messages of the server shown: their list, in which each is changed, moved and deleted where it
// stands, and the field for new ones.
import { $, act, ask, askEach, setOutcome, el, kAdd, may, nameOf, on, outcomeOf, remember, request, sentence, setCurrent, setText,
  state, targets, tell, warn, withNotes } from "./host.js";

const kSettle = 700; // ms after a row has moved in which a press on it may be meant for another
const kWindowLetters = 60; // of a message, shown in the plugin's window
const kWesternSigns = "€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ";

let rows = []; // in the list's order
let list = null; // as the host sent it; null before
let placeholders = [];

const path = (index, rest) => `/api/profiles/${index}/${rest}`;
const place = (row) => rows.indexOf(row);
const quoted = (text) => `“${text}”`;

// --- Texts ---

const letters = (text) => [...text].length;
const counted = (count, thing) => `${count} ${thing}${count === 1 ? "" : "s"}`;
const isWestern = (letter) => /[\x20-\x7e\xa0-\xff]/.test(letter) || kWesternSigns.includes(letter);

/** The problem with a text; empty if there is none. */
function faultOf(text) {
  const strange = [...text].find((letter) => !isWestern(letter));
  return strange ? `${quoted(strange)} is no letter that the game servers know.` : "";
}

/** What may surprise about a text that can be sent; empty if nothing. */
function warningOf(text) {
  if (!placeholders.length || placeholders.includes(text)) return "";
  if (placeholders.some((name) => text.includes(name))) return "A live text works only as the whole message.";
  const braces = /\{[^{}]*\}/.exec(text);
  return braces ? `${quoted(braces[0])} is no live text: players would read it with its braces.` : "";
}

// --- The list ---

let pointerMovedAt = 0;
let pointer = "";
for (const kind of ["pointermove", "pointerdown"]) {
  addEventListener(kind, (event) => { // a tap is not announced by a move
    const here = `${event.clientX} ${event.clientY}`;
    if (here !== pointer || event.pointerType === "touch") [pointer, pointerMovedAt] = [here, performance.now()];
  }, { capture: true, passive: true });
}

/** Empties the list until the messages of another server, or for other rights, are shown. */
export function forgetMessages() {
  rows = [];
  list = null;
  $("messages").replaceChildren();
}

/** Shows the list. Each message keeps its row, wherever it has moved, and what is pointed at or
    focused stays where it is on the screen; `anchor` is another row for that, or null for none. */
export function showMessages(value, anchor) {
  const isFirst = list === null;
  const focused = document.activeElement;
  const focusedRow = rows.find((row) => row.item.contains(focused));
  const focusedPlace = place(focusedRow);
  const before = new Map(rows.map((row) => [row, row.item.getBoundingClientRect().top]));
  const kept = anchor !== undefined ? anchor : rows.find((row) => row.item.matches(":hover")) ?? focusedRow;
  list = value;
  const old = rows;
  rows = rowsOf(value.messages);
  for (const row of old) if (!rows.includes(row)) dropRow(row);
  rows.forEach((row, position) => {
    const there = $("messages").children[position];
    if (there !== row.item) $("messages").insertBefore(row.item, there ?? null);
    fillRow(row, value.messages[position], position);
  });
  $("messages-loading").hidden = true;
  $("no-messages").hidden = rows.length > 0 || value.problem !== "";
  setText($("messages-problem"), value.problem && sentence(value.problem));
  markNext();
  if (focusedRow && !rows.includes(focusedRow)) focusRow(focusedPlace, focused.dataset.kind);
  else if (focused?.disabled) focusedRow?.place.focus({ preventScroll: true });
  else if (focusedRow && document.activeElement !== focused) focused.focus({ preventScroll: true });
  if (before.has(kept) && rows.includes(kept)) {
    scrollBy({ top: kept.item.getBoundingClientRect().top - before.get(kept), behavior: "instant" });
  }
  if (isFirst) return;
  for (const row of rows) {
    const shift = row.item.getBoundingClientRect().top - (before.get(row) ?? Infinity);
    if (Math.abs(shift) > 4) row.movedAt = performance.now();
  }
}

/** The row of each message: of the same text, or of a text that was changed in place; else new. */
function rowsOf(messages) {
  const found = messages.map(() => null);
  const take = (position, row) => {
    found[position] = row;
    left.delete(row);
  };
  const left = new Set(rows);
  const shift = rows.length - messages.length;
  let head = 0;
  while (head < rows.length && rows[head].message.text === messages[head]?.text) take(head, rows[head++]);
  for (let end = messages.length - 1; end >= head && end + shift >= head; --end) {
    if (rows[end + shift].message.text !== messages[end].text) break;
    take(end, rows[end + shift]);
  }
  const byText = new Map();
  for (const row of left) byText.set(row.message.text, [...(byText.get(row.message.text) ?? []), row]);
  messages.forEach(({ text }, position) => {
    const row = found[position] ? null : byText.get(text)?.shift();
    if (row) take(position, row);
  });
  return found.map((row, position) => row ?? (shift === 0 && left.has(rows[position]) ? rows[position] : makeRow()));
}

function makeRow() {
  const row = { message: { text: "" }, movedAt: -Infinity, focusedAt: -Infinity, tool: null };
  const button = (kind, sign, work) => el("button", { type: "button", "data-kind": kind,
    onclick: (event) => isMeant(row, event) && act(row.item, null, () => work(row)) }, sign);
  const isMine = may(kAdd);
  row.place = isMine ? button("place", "", openMover) : el("span");
  row.text = isMine ? button("text", "", openEditor) : el("span");
  row.says = el("span", { class: "says" });
  row.item = el("li", {}, el("div", { class: "number" }, row.place), el("div", { class: "text" }, row.text, row.says));
  if (!isMine) return row;
  row.place.addEventListener("keydown", (event) => moveByKey(row, event));
  row.place.addEventListener("pointerdown", (event) => startDrag(row, event));
  row.item.append(el("div", { class: "row-actions" }, button("up", "↑", () => moveTo(row, place(row) - 1)),
    button("down", "↓", () => moveTo(row, place(row) + 1)), button("delete", "✕", remove)));
  return row;
}

function dropRow(row) {
  row.item.remove();
  const draft = row.tool?.elements.text?.value;
  if (!draft || draft === row.message.text || row.isDeleting) return;
  warn(`Somebody has deleted the message that you were changing. You had: ${quoted(draft)}`);
}

const kNames = { place: "Drag it, or press it to choose its place; with keys: ↑ ↓ Home End", text: "Change the text",
  up: "Move up", down: "Move down", delete: "Delete" };

function fillRow(row, message, position) {
  const says = saysNow(message);
  if (row.says.textContent !== says) { // so that the rows below stay in place
    row.says.style.minHeight = row.message.text === message.text ? `${row.says.offsetHeight}px` : "";
  }
  row.message = message;
  setText(row.place, String(position + 1));
  setText(row.text, message.text);
  setText(row.says, says);
  row.says.hidden = says === "";
  row.says.classList.toggle("warning", !message.live && message.says !== "");
  for (const button of row.item.querySelectorAll("button[data-kind]")) {
    const { kind } = button.dataset;
    button.disabled = (kind === "up" && position === 0) || (kind === "down" && position === rows.length - 1);
    const name = kind === "place" ? `Place ${position + 1} of ${rows.length}` : kNames[kind];
    button.setAttribute("aria-label", `${name}: ${message.text}`);
    button.title = kNames[kind];
  }
}

function saysNow(message) {
  if (!message.live) return message.says === "" ? "empty, so it is skipped" : warningOf(message.text);
  if (state.rows.get(state.chosen)?.game === "unreachable") return "the game server is unreachable";
  if (message.problem) return message.problem;
  if (message.says === null) return "now: …";
  return message.says ? `now: ${message.says}` : "now: nothing, so it is skipped";
}

export function markNext() {
  const next = state.rows.get(state.chosen)?.next?.position;
  rows.forEach((row, position) => setCurrent(row.item, position === next));
}

/** Whether a press is meant for this row, which is not sure if the row has only just moved under a
    resting pointer, or was given the focus. */
function isMeant(row, event) {
  const now = performance.now();
  const isByKey = event.detail === 0;
  if (isByKey ? now - row.focusedAt > kSettle : now - row.movedAt > kSettle && pointerMovedAt > row.movedAt) return true;
  tell("Nothing was done: the list had just moved under your press. Look, and press again.");
  if (now - row.movedAt > kSettle) row.movedAt = -Infinity;
  return false;
}

/** Moves the focus to where the user continues after a row has gone. */
function focusRow(position, kind) {
  const row = rows[Math.min(position, rows.length - 1)];
  if (row) row.focusedAt = performance.now();
  const button = row?.item.querySelector(`[data-kind=${kind ?? "text"}]`);
  (button && !button.disabled ? button : row?.place ?? $("text")).focus({ preventScroll: true });
}

/** Shows the messages at once instead of waiting for the events. */
export async function refreshMessages(anchor) {
  const asked = state.chosen;
  const value = await ask("GET", path(asked, "messages"));
  if (value && asked === state.chosen) showMessages(value, anchor);
}

/** Does something with the message that has this text and is nearest to `near`, wherever it is now. */
async function withMessage(index, text, near, work) {
  const { answer, ...refused } = await request("GET", path(index, "messages"));
  if (!answer) return refused;
  const places = answer.messages.flatMap((message, position) => (message.text === text ? [position] : []));
  if (!places.length) return { status: 409, words: `${quoted(text)} is no longer in the list.` };
  return work(places.reduce((best, one) => (Math.abs(one - near) < Math.abs(best - near) ? one : best)));
}

// --- One message ---

async function remove(row) {
  const index = state.chosen;
  const position = place(row);
  const { text } = row.message;
  row.isDeleting = true;
  const answer = await ask("DELETE", path(index, "messages"), { position, text });
  await refreshMessages();
  row.isDeleting = false;
  if (!answer) return;
  remember(`deleted ${quoted(text)}`, [[index, () => request("POST", path(index, "restored"), { position, text })]]);
  tell(withNotes(`Deleted: ${text}`, answer), { isUndoable: true });
}

/** Puts a message at a place. The page follows it, unless it was dragged. */
async function moveTo(row, to, anchor = row) {
  const index = state.chosen;
  const position = place(row);
  const { text } = row.message;
  const answer = await ask("POST", path(index, "places"), { position, text, to });
  await refreshMessages(anchor);
  if (!answer) return;
  remember(`moved ${quoted(text)}`, [[index, () => withMessage(index, text, to, (now) =>
    request("POST", path(index, "places"), { position: now, text, to: position }))]]);
  tell(withNotes(`Moved to place ${to + 1}: ${text}`, answer), { isUndoable: true });
}

async function change(row, newText) {
  const index = state.chosen;
  const position = place(row);
  const { text } = row.message;
  const put = (at, from, to) => request("PUT", path(index, "messages"), { position: at, text: from, newText: to });
  const answer = await ask("PUT", path(index, "messages"), { position, text, newText });
  if (answer) closeTool(row);
  await refreshMessages(row);
  if (!answer) return;
  remember(`changed ${quoted(text)}`, [[index, () => withMessage(index, newText, position, (now) => put(now, newText, text))]]);
  tell(withNotes(`Changed: ${newText}`, answer), { isUndoable: true });
}

/** Opens a form inside the row, in place of what it had. */
function openTool(row, hidden, onsubmit, ...children) {
  row.tool?.remove();
  row.tool = el("form", { class: "tool", novalidate: true, onkeydown: (event) => {
    if (event.key !== "Escape") return;
    event.preventDefault();
    closeTool(row);
  } }, ...children, el("button", { type: "button", onclick: () => closeTool(row) }, "Cancel"));
  row.tool.addEventListener("submit", (event) => {
    event.preventDefault();
    onsubmit();
  });
  row.text.parentElement.hidden = hidden;
  row.opener = document.activeElement;
  row.item.append(row.tool);
  row.item.scrollIntoView({ block: "nearest" });
  othersMoved(row);
}

function othersMoved(row) {
  for (const other of rows) if (other !== row) other.movedAt = performance.now();
}

function closeTool(row) {
  const hadFocus = row.tool?.contains(document.activeElement);
  row.tool?.remove();
  row.tool = null;
  row.text.parentElement.hidden = false;
  othersMoved(row);
  if (hadFocus) (row.opener?.isConnected ? row.opener : row.text).focus();
}

function openEditor(row) {
  const field = el("input", { name: "text", autocomplete: "off", value: row.message.text,
    "aria-label": `Text of message ${place(row) + 1}` });
  const hint = el("p", { class: "hint", "aria-live": "polite" });
  const showFault = () => {
    const fault = faultOf(field.value.trim());
    field.setAttribute("aria-invalid", fault !== "");
    hint.classList.toggle("bad", fault !== "");
    setText(hint, fault || warningOf(field.value.trim()));
  };
  field.addEventListener("input", showFault);
  openTool(row, true, () => act(row.item, null, async () => {
    const text = field.value.trim();
    if (text === row.message.text) closeTool(row);
    else if (text === "") warn("A message needs a text. To take it out of the list, delete it.");
    else if (!faultOf(text)) await change(row, text);
  }), field, hint, el("button", { class: "primary" }, "Save"));
  field.focus();
  field.setSelectionRange(field.value.length, field.value.length);
}

function openMover(row) {
  const field = el("input", { type: "number", min: 1, max: rows.length, value: place(row) + 1, inputmode: "numeric",
    "aria-label": "New place" });
  const go = (to) => act(row.item, null, () => {
    closeTool(row);
    if (to !== place(row)) return moveTo(row, to);
  });
  openTool(row, false, () => {
    if (field.valueAsNumber >= 1) go(Math.min(Math.trunc(field.valueAsNumber), rows.length) - 1);
  }, field, el("button", { class: "primary" }, "Move"),
  el("button", { type: "button", "data-kind": "top", onclick: () => go(0) }, "To the top"),
  el("button", { type: "button", onclick: () => go(rows.length - 1) }, "To the end"));
  field.select();
}

function moveByKey(row, event) {
  const to = { ArrowUp: place(row) - 1, ArrowDown: place(row) + 1, Home: 0, End: rows.length - 1 }[event.key];
  if (to === undefined || event.ctrlKey || event.altKey || event.metaKey) return;
  event.preventDefault();
  if (!event.repeat && to !== place(row) && rows[to]) act(row.item, null, () => moveTo(row, to));
}

/** Follows the pointer from a row's number to the place where it is let go. */
function startDrag(row, event) {
  if (event.button !== 0) return;
  const { pointerId, clientY: startY } = event;
  let y = startY;
  let to = null; // once it is dragged
  const end = new AbortController();
  const mark = () => {
    const others = rows.filter((other) => other !== row);
    to = others.filter(({ item }) => item.getBoundingClientRect().top + item.offsetHeight / 2 < y).length;
    others.forEach(({ item }, position) => {
      item.classList.toggle("drop-before", position === to);
      item.classList.toggle("drop-after", position === to - 1 && to === others.length);
    });
    row.item.classList.add("dragged");
  };
  const scrolling = setInterval(() => {
    if (to === null || (y > 80 && y < innerHeight - 80)) return;
    scrollBy({ top: y <= 80 ? -16 : 16, behavior: "instant" });
    mark();
  }, 16);
  const stop = () => {
    end.abort();
    clearInterval(scrolling);
    for (const item of $("messages").children) item.classList.remove("dragged", "drop-before", "drop-after");
  };
  const hear = (kind, work) => row.place.addEventListener(kind, work, { signal: end.signal });
  row.place.setPointerCapture(pointerId);
  hear("pointermove", (move) => {
    y = move.clientY;
    if (to !== null || Math.abs(y - startY) > 6) mark();
  });
  hear("pointerup", () => {
    stop();
    if (to === null) return;
    row.place.addEventListener("click", (click) => click.stopImmediatePropagation(), { capture: true, once: true });
    if (to !== place(row)) act(row.item, null, () => moveTo(row, to, null));
  });
  for (const kind of ["pointercancel", "lostpointercapture"]) hear(kind, stop);
  addEventListener("keydown", (key) => key.key === "Escape" && stop(), { signal: end.signal });
}

// --- New messages ---

const drafts = new Map(); // by profile
let previewTimer = 0;

export async function loadPlaceholders() {
  if (placeholders.length) return;
  const answer = await ask("GET", "/api/placeholders");
  if (!answer || placeholders.length) return;
  placeholders = answer.placeholders;
  for (const name of placeholders) $("placeholders").append(el("option", { value: name }, name));
  if (list) showMessages(list);
  showDraft();
}

export const forgetDrafts = () => drafts.clear();

/** Shows what was begun for the server that is shown now. */
export function showDraftOfChosen() {
  $("text").value = drafts.get(state.chosen) ?? "";
  showDraft();
}

/** The messages in the field: each line that is not empty is one. */
const linesOf = (value) => value.split("\n").map((line) => line.trim()).filter((line) => line);

function showHint(words, isBad = false) {
  setText($("hint"), words);
  $("hint").classList.toggle("bad", isBad);
}

/** Shows what there is to say about the text in the field, and what the buttons do with it. */
export function showDraft() {
  drafts.set(state.chosen, $("text").value);
  $("text").rows = Math.min(10, $("text").value.split("\n").length);
  const texts = linesOf($("text").value);
  const bad = texts.find(faultOf);
  const doubtful = texts.find(warningOf);
  const long = texts.find((text) => letters(text) > kWindowLetters);
  const isLive = texts.length === 1 && placeholders.includes(texts[0]);
  const to = targets().length;
  setText($("count"), texts.length > 1 ? `${texts.length} messages` : texts.length ? counted(letters(texts[0]), "letter") : "");
  setText($("add"), `Add ${texts.length > 1 ? `${texts.length} messages ` : ""}to ${to > 1 ? `${to} lists` : "the list"}`);
  setText($("say"), to > 1 ? `Say once on ${to} servers` : "Say once, now");
  $("placeholders").value = isLive ? texts[0] : "";
  $("text").setAttribute("aria-invalid", bad !== undefined);
  $("add").disabled = !texts.length || bad !== undefined;
  $("say").disabled = texts.length !== 1 || bad !== undefined;
  $("hint").setAttribute("aria-live", "polite");
  clearTimeout(previewTimer);
  const of = (text, words) => (texts.length > 1 ? `${quoted(text)}: ${words}` : words);
  showHint(bad !== undefined ? of(bad, faultOf(bad))
    : isLive ? "" // until the preview arrives
    : doubtful ? of(doubtful, warningOf(doubtful))
    : long ? of(long, `The plugin's own window shows the first ${kWindowLetters} letters.`) : "", bad !== undefined);
  if (isLive) previewTimer = setTimeout(() => preview(texts[0]), 150);
}

/** Shows what the live text says now and refreshes it; screen readers read only the first one. */
async function preview(text) {
  const { answer, words } = await request("POST", path(state.chosen, "preview"), { text });
  if ($("text").value.trim() !== text) return;
  showHint(!answer ? words : answer.says ? `Players read now: ${answer.says}`
    : answer.problem ? sentence(answer.problem) : "It has nothing to say now, and would be skipped.");
  $("hint").setAttribute("aria-live", "off");
  previewTimer = setTimeout(() => preview(text), 5000);
}

/** Sends what is in the field to each server. The field is emptied if it still holds it; if some
    servers did not do it, it stays, for those alone. Returns what askEach() returns. */
async function send(from, held, how) {
  const to = targets();
  const done = await askEach(to, how);
  const failed = to.filter((index) => !done.has(index));
  if (!failed.length && drafts.get(from) === held) drafts.delete(from);
  if (from !== state.chosen) return done;
  if (failed.length && done.size) on.retarget(failed);
  if (!failed.length && $("text").value === held) showDraftOfChosen();
  if (done.has(from)) await refreshMessages();
  const isElsewhere = document.activeElement !== document.body && !$("compose").contains(document.activeElement);
  if (!isElsewhere) $("text").focus({ preventScroll: failed.length > 0 });
  return done;
}

/** Takes texts away again that were added at the end. */
async function takeAway(index, texts) {
  let result = { answer: {} };
  for (const text of [...texts].reverse()) {
    result = await withMessage(index, text, Infinity, (position) => request("DELETE", path(index, "messages"), { position, text }));
    if (!result.answer) break;
  }
  return result;
}

function add(event) {
  event.preventDefault();
  const held = $("text").value;
  const texts = linesOf(held);
  if (!texts.length || texts.some(faultOf)) return;
  const isOne = texts.length === 1;
  act($("compose"), event, () => send(state.chosen, held, {
    title: "Added",
    words: () => `Added at the end: ${isOne ? texts[0] : `${texts.length} messages`}`,
    one: (index) => (isOne ? request("POST", path(index, "messages"), { text: texts[0] }) : request("POST", path(index, "lists"), { texts })),
    step: `added ${isOne ? quoted(texts[0]) : `${texts.length} messages`}`,
    undo: (index) => () => takeAway(index, texts),
  }));
}

function say(event) {
  const held = $("text").value;
  const text = held.trim();
  act($("compose"), event, async () => {
    const done = await send(state.chosen, held, {
      title: "Said once",
      words: ({ done }) => sentence(done.split("\n")[0]),
      one: (index) => request("POST", path(index, "say"), { text }),
    });
    for (const [index, answer] of done) {
      if (answer.outcome === "under way") awaitOutcome(index, answer.number, text, done.size > 1 ? outcomeOf(index) : null);
    }
  });
}

/** Tells what became of a text once the host knows it, at its outcome if it is one of several. */
async function awaitOutcome(index, number, text, item) {
  let sent;
  do {
    await new Promise((resolve) => setTimeout(resolve, 1000));
    sent = (await request("GET", path(index, `sent?number=${number}`))).answer;
  } while (sent?.outcome === "under way");
  const isDone = sent?.outcome === "sent";
  const words = isDone ? `Sent: ${text}${sent.reason && ` (${sent.reason})`}` : `Not sent: ${sent?.reason || "the host does not know what became of it"}`;
  setOutcome(item, isDone, words);
  if (!isDone) warn(`${nameOf(index)}: ${words}`);
  else if (!item) tell(words);
}

function copyList(event) {
  const from = state.chosen;
  const to = targets().filter((index) => index !== from);
  if (!to.length) {
    $("pick").open = true;
    $("pick").querySelector("summary").focus();
    return tell("Choose the servers to copy to, then press the button again.");
  }
  act($("copy"), event, () => askEach(to, {
    title: `Copied from ${nameOf(from)}`,
    words: ({ done }) => sentence(done.split("\n")[0]),
    one: async (index) => {
      const result = await request("POST", path(index, "copies"), { from });
      const now = result.answer?.added ? (await request("GET", path(index, "messages"))).answer : null;
      if (now) result.answer.texts = now.messages.slice(-result.answer.added).map(({ text }) => text);
      return result;
    },
    step: `copied the list of ${nameOf(from)}`,
    undo: (index, { texts }) => texts && (() => takeAway(index, texts)),
  }));
}

$("text").addEventListener("input", showDraft);
$("text").addEventListener("keydown", (event) => {
  if (event.key !== "Enter" || event.shiftKey || event.isComposing) return;
  event.preventDefault();
  if (!event.repeat) $("compose").requestSubmit($("add"));
});
$("placeholders").addEventListener("change", () => {
  if ($("placeholders").value) $("text").value = $("placeholders").value;
  showDraft(); // keep the focus, so that arrow keys step through all of them
});
$("compose").addEventListener("submit", add);
$("say").addEventListener("click", say);
$("copy").addEventListener("click", copyList);
