// The page: follows the host through server-sent events and asks it for changes. Texts of players
// and messages are inserted as text, never as markup.

const $ = (id) => document.getElementById(id);
const kAdd = "Add/Remove Rotacasts";
const kChange = "Change Rotacasts Settings";
const kWindowLetters = 60; // of a message, shown in the plugin's window
const kUndoSeconds = 10;
const kSilenceSeconds = 40; // the host sends something every 15
const kWesternSigns = "€‚ƒ„…†‡ˆ‰Š‹ŒŽ‘’“”•–—˜™š›œžŸ";

const rows = new Map(); // profiles by index
let person = null;
let chosen = 0; // the profile shown
let list = null; // its messages
let clockSkew = 0; // the host's clock minus this one, ms
let source = null;
let silence = 0;

/** Makes an element with attributes and children; strings become text. */
function el(tag, attributes = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) element.addEventListener(name.slice(2), value);
    else if (typeof value === "boolean") element.toggleAttribute(name, value);
    else element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

/** Changes the text only if it differs, so that nothing jumps and no screen reader starts over. */
function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

function setCurrent(element, isCurrent) {
  if (isCurrent) element.setAttribute("aria-current", "true");
  else element.removeAttribute("aria-current");
}

// --- Requests to the host ---

/** Sends a request. Returns the answer, or null after showing why there is none. */
async function ask(method, path, body) {
  let response;
  try {
    response = await fetch(path, method === "GET" ? {} : {
      method, headers: { "Content-Type": "application/json" }, body: JSON.stringify(body ?? {}),
    });
  } catch {
    warn("The host does not answer. Look at the list before you try again.");
    return null;
  }
  const answer = await response.json().catch(() => ({ words: "the host answered strangely" }));
  if (response.ok) return answer;
  if (response.status === 401) signedOut("You have been signed out.");
  else warn(sentence(answer.words));
  return null;
}

const profilePath = (rest) => `/api/profiles/${chosen}/${rest}`;
const sentence = (words) => words.charAt(0).toUpperCase() + words.slice(1) + (/[.!?…]$/.test(words) ? "" : ".");

// --- Showing the outcome ---

let toastTimer = 0;

function toast(words, { isBad = false, undo = null, seconds = 6 } = {}) {
  clearTimeout(toastTimer);
  setText($("toast-words"), words);
  $("toast").classList.toggle("bad", isBad);
  $("undo").hidden = !undo;
  $("undo").onclick = undo;
  $("toast").hidden = false;
  setText($(isBad ? "warned" : "told"), "");
  setText($(isBad ? "warned" : "told"), undo ? `${words}. Control Z puts it back.` : words);
  toastTimer = setTimeout(() => fadeToast(seconds), seconds * 1000);
}

/** Hides the toast, but not while it is pointed at or has the focus. */
function fadeToast(seconds) {
  if ($("toast").matches(":hover, :focus-within")) toastTimer = setTimeout(() => fadeToast(seconds), seconds * 1000);
  else hideToast();
}

function hideToast() {
  clearTimeout(toastTimer);
  const hadFocus = $("toast").contains(document.activeElement);
  $("toast").hidden = true;
  if (hadFocus) $("profile-name").focus();
}

const tell = (words, more) => toast(words, more);
const warn = (words) => toast(words, { isBad: true, seconds: 12 });

addEventListener("keydown", (event) => {
  if (event.key === "Escape") return hideToast();
  const isUndo = event.key === "z" && (event.ctrlKey || event.metaKey) && !event.shiftKey;
  if (!isUndo || event.target.value || $("toast").hidden || $("undo").hidden) return; // a text field has its own undo
  event.preventDefault();
  $("undo").click();
});

// --- Signing in and out ---

function show(view) {
  for (const id of ["loading", "sign-in", "desk"]) $(id).hidden = id !== view;
  $("who").hidden = view !== "desk";
}

function signedOut(note = "") {
  person = null;
  stopFollowing();
  rows.clear();
  setText($("banner"), "");
  $("toast").hidden = true;
  setText($("sign-in-note"), note);
  show("sign-in");
  document.title = "Rotacasts";
  $("person").focus();
}

function signedIn(answer) {
  person = answer;
  clockSkew = answer.now - Date.now();
  setText($("name"), person.name);
  $("password").value = "";
  setText($("sign-in-problem"), "");
  show("desk");
  $("compose").hidden = !person.rights.includes(kAdd);
  $("no-changes").hidden = person.rights.includes(kAdd);
  $("no-settings").hidden = person.rights.includes(kChange);
  $("switch").disabled = $("interval").disabled = !person.rights.includes(kChange);
  choose();
}

$("sign-in").addEventListener("submit", async (event) => {
  event.preventDefault();
  const button = $("sign-in").querySelector("button");
  button.disabled = true;
  setText($("sign-in-problem"), "");
  try {
    const response = await fetch("/api/session", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ name: $("person").value, password: $("password").value }),
    });
    const answer = await response.json();
    if (response.ok) {
      signedIn(answer);
      loadPlaceholders();
      ($("profile").hidden ? $("main") : $("profile-name")).focus();
    } else {
      setText($("sign-in-problem"), sentence(answer.words));
      $("password").select();
    }
  } catch {
    setText($("sign-in-problem"), "The host does not answer. Try again.");
  }
  button.disabled = false;
});

$("sign-out").addEventListener("click", async () => {
  if (await ask("DELETE", "/api/session")) signedOut("You have signed out.");
});

// --- Following the host ---

function stopFollowing() {
  clearTimeout(silence);
  source?.close();
  source = null;
}

function follow() {
  stopFollowing();
  const mine = (source = new EventSource(`/api/events?profile=${chosen}`));
  const known = new Set();
  const on = (kind, act) => mine.addEventListener(kind, (event) => {
    if (mine !== source) return;
    clearTimeout(silence);
    silence = setTimeout(lost, kSilenceSeconds * 1000);
    act(JSON.parse(event.data));
  });
  let isComplete = false;
  on("profile", (row) => { known.add(row.index); rows.set(row.index, row); if (isComplete) showRows(); });
  on("gone", (index) => { rows.delete(index); showRows(); });
  on("messages", (value) => { if (value.index === chosen) showMessages(value); });
  on("log", (value) => { if (value.index === chosen) showLog(value); });
  on("still", () => {});
  on("end", () => signedOut("Your session has ended."));
  on("ready", () => {
    for (const index of rows.keys()) if (!known.has(index)) rows.delete(index);
    if ($("banner").textContent) tell("Connected again.");
    setText($("banner"), "");
    isComplete = true;
    showRows(true);
  });
  mine.onerror = () => { if (mine === source) lost(); };
}

/** Waits for the connection to return by itself, unless the session has ended. */
function lost() {
  stopFollowing();
  if (!person) return;
  setText($("banner"), "The connection to the host is lost. Trying again…");
  silence = setTimeout(async () => {
    const answer = await fetch("/api/session").catch(() => null);
    if (!person) return;
    if (answer?.ok) follow();
    else if (answer?.status === 401) signedOut("You have been signed out, or the host was started again.");
    else lost();
  }, 1500);
}

addEventListener("offline", lost);

// --- The list of profiles ---

function stateOf(row) {
  if (row.stopped) return ["stopped", "stopped"];
  if (row.game === "unreachable") return ["unreachable", "unreachable"];
  if (!row.on) return ["off", "switched off"];
  if (row.messages === 0) return ["off", "no messages"];
  if (row.game === "idle") return ["waiting", "no game"];
  return ["sending", "sending"];
}

function untilNext(row) {
  if (!row.next?.at) return "";
  const seconds = Math.max(0, Math.round((row.next.at - clockSkew - Date.now()) / 1000));
  return `${Math.floor(seconds / 60)}:${String(seconds % 60).padStart(2, "0")}`;
}

const nextText = (row) => row.next.text.trim() || "(empty)";

function makeRow(index) {
  return el("li", { "data-index": index }, el("a", { href: `#/${index}` },
    el("strong"), el("span", { class: "state" }), el("span", { class: "next" })));
}

function showRows(isComplete = false) {
  const all = [...rows.values()].sort((a, b) => a.index - b.index);
  const old = new Map([...$("profiles").children].map((item) => [Number(item.dataset.index), item]));
  for (const [index, item] of old) if (!rows.has(index)) item.remove();
  all.forEach((row, place) => {
    const item = old.get(row.index) ?? makeRow(row.index);
    if ($("profiles").children[place] !== item) $("profiles").insertBefore(item, $("profiles").children[place] ?? null);
    const [kind, words] = stateOf(row);
    const [name, state] = item.firstChild.children;
    setText(name, row.folder);
    setText(state, words);
    state.className = `state ${kind}`;
    setCurrent(item.firstChild, row.index === chosen);
  });
  if (isComplete) {
    $("no-profiles").hidden = all.length > 0;
    const isWide = matchMedia("(min-width: 56rem)").matches;
    if (chosen && !rows.has(chosen)) return void (location.hash = "#/");
    if (!chosen && isWide && all.length) return void location.replace(`#/${all[0].index}`);
  }
  showProfile();
  showTimes();
}

function showTimes() {
  for (const item of $("profiles").children) {
    const row = rows.get(Number(item.dataset.index));
    const time = row && untilNext(row);
    if (row) setText(item.querySelector(".next"), time ? `${time} · ${nextText(row)}` : row.messages === 1 ? "1 message" : `${row.messages} messages`);
  }
  const row = rows.get(chosen);
  if (!row) return;
  const time = untilNext(row);
  const why = row.stopped ? `Stopped at the host's console; “show ${row.index}” there starts it again.`
    : row.game === "unreachable" ? "Nothing is sent while the game server is unreachable."
    : !row.on ? "Nothing is sent while this is switched off."
    : row.messages === 0 ? "There is nothing to send."
    : row.game === "idle" ? "Waiting for a game to begin."
    : "";
  setText($("next"), why || (time ? `Next in ${time}: ${nextText(row)}` : ""));
}
setInterval(showTimes, 500);

// --- One profile ---

function choose() {
  const wanted = Number(location.hash.replace("#/", "")) || 0;
  const isNew = wanted !== chosen || !source;
  chosen = wanted;
  document.body.classList.toggle("chosen", chosen !== 0);
  if (!person || !isNew) return;
  list = null;
  $("messages").replaceChildren();
  $("sent").replaceChildren();
  $("log").replaceChildren();
  for (const id of ["no-messages", "nothing-sent", "no-log"]) $(id).hidden = true;
  $("messages-loading").hidden = false;
  setText($("messages-problem"), "");
  showRows();
  follow();
}

addEventListener("hashchange", () => {
  const before = chosen;
  choose();
  if ($("toast").classList.contains("bad")) hideToast();
  (chosen ? $("profile-name") : $("profiles").querySelector(`[data-index="${before}"] a`))?.focus();
});

function showProfile() {
  const row = rows.get(chosen);
  $("profile").hidden = !row;
  document.title = row ? `${row.folder} – Rotacasts` : "Rotacasts";
  if (!row) return;
  setText($("profile-name"), row.folder);
  setText($("profile-state"), `${row.gameCode} · ${stateOf(row)[1]}`);
  setText($("profile-problem"), row.problem && sentence(row.problem));
  if (!isSwitching) $("switch").checked = row.on;
  if (document.activeElement !== $("interval")) $("interval").value = row.interval;
  markNext();
}

let isSwitching = false;

$("switch").addEventListener("change", async () => {
  const on = $("switch").checked;
  isSwitching = true;
  const row = rows.get(chosen);
  if (await ask("PUT", profilePath("switch"), { on })) {
    row.on = on; // earlier than the events report it
    tell(on ? "Switched on." : "Switched off.");
  }
  isSwitching = false;
  showProfile();
});

$("interval").addEventListener("change", async () => {
  const minutes = $("interval").valueAsNumber;
  if (!Number.isInteger(minutes) || minutes < 0 || minutes > 30) {
    warn("An interval is a whole number of minutes from 0 to 30.");
  } else if (await ask("PUT", profilePath("interval"), { minutes })) {
    return tell(`A message every ${minutes} min.`);
  }
  $("interval").value = rows.get(chosen)?.interval ?? "";
});

function showMessages(value) {
  const focused = document.activeElement;
  const place = [...$("messages").children].findIndex((item) => item.contains(focused));
  list = value;
  $("messages-loading").hidden = true;
  $("no-messages").hidden = value.messages.length > 0 || value.problem !== "";
  setText($("messages-problem"), value.problem && sentence(value.problem));
  const items = $("messages");
  while (items.children.length > value.messages.length) items.lastChild.remove();
  value.messages.forEach((message, position) => {
    if (!items.children[position]) items.append(makeMessage(position));
    fillMessage(items.children[position], message, position, value.messages.length);
  });
  markNext();
  if (place >= 0 && (!focused.isConnected || focused.disabled)) focusRow(place, focused.dataset.kind);
  showSent(value.sent);
}

function makeMessage(position) {
  const button = (kind, sign, act) => el("button", { type: "button", "data-kind": kind, onclick: () => act(position) }, sign);
  const item = el("li", {}, el("span", { class: "number" }, String(position + 1)),
    el("div", { class: "text" }, el("span"), el("span", { class: "says" })));
  if (person.rights.includes(kAdd)) {
    item.append(el("div", { class: "row-actions" }, button("up", "↑", (at) => move(at, true)),
      button("down", "↓", (at) => move(at, false)), button("delete", "✕", remove)));
  }
  return item;
}

function fillMessage(item, message, position, count) {
  const [text, says] = item.querySelector(".text").children;
  const before = text.textContent === message.text ? says.offsetHeight : 0;
  if (says.textContent !== saysNow(message)) says.style.minHeight = `${before}px`; // so that the rows below stay in place
  setText(text, message.text);
  says.hidden = !message.live && message.says !== "";
  setText(says, saysNow(message));
  for (const button of item.querySelectorAll("button")) {
    const { kind } = button.dataset;
    button.disabled = (kind === "up" && position === 0) || (kind === "down" && position === count - 1);
    button.setAttribute("aria-label", `${{ up: "Move up", down: "Move down", delete: "Delete" }[kind]}: ${message.text}`);
    button.title = { up: "Move up", down: "Move down", delete: "Delete" }[kind];
  }
}

function saysNow(message) {
  if (!message.live) return "empty, so it is skipped";
  if (rows.get(chosen)?.game === "unreachable") return "the game server is unreachable";
  if (message.problem) return message.problem;
  if (message.says === null) return "now: …";
  return message.says ? `now: ${message.says}` : "now: nothing, so it is skipped";
}

function markNext() {
  const next = rows.get(chosen)?.next?.position;
  [...$("messages").children].forEach((item, position) => {
    setCurrent(item, position === next);
  });
}

/** Moves the focus to where the user continues after using a row's button. */
function focusRow(position, kind) {
  const item = $("messages").children[Math.min(position, $("messages").children.length - 1)];
  const button = item?.querySelector(`[data-kind=${kind}]`);
  (button && !button.disabled ? button : item?.querySelector("button:not(:disabled)") ?? $("text")).focus();
}

/** Shows the messages at once instead of waiting for the events. */
async function refreshMessages() {
  const asked = chosen;
  const value = await ask("GET", profilePath("messages"));
  if (value && asked === chosen) showMessages(value);
}

async function move(position, up) {
  const { text } = list.messages[position];
  const isDone = await ask("POST", profilePath("moves"), { position, text, up });
  await refreshMessages();
  if (!isDone) return;
  tell(`Moved ${up ? "up" : "down"}: ${text}`);
  focusRow(position + (up ? -1 : 1), up ? "up" : "down");
}

async function remove(position) {
  const { text } = list.messages[position];
  const profile = chosen;
  const isDone = await ask("DELETE", profilePath("messages"), { position, text });
  await refreshMessages();
  if (!isDone) return;
  const undo = async () => {
    hideToast();
    if (!await ask("POST", `/api/profiles/${profile}/restored`, { position, text })) return;
    await refreshMessages();
    tell(`Put back: ${text}`);
    if (profile === chosen) focusRow(position, "delete");
  };
  tell(`Deleted: ${text}`, { undo, seconds: kUndoSeconds });
  focusRow(position, "delete");
}

// --- A new message ---

const letters = (text) => [...text].length;
const isWestern = (letter) => /[\x20-\x7e\xa0-\xff]/.test(letter) || kWesternSigns.includes(letter);
let placeholders = [];
let previewTimer = 0;

async function loadPlaceholders() {
  const answer = await ask("GET", "/api/placeholders");
  if (!answer || placeholders.length) return;
  placeholders = answer.placeholders;
  for (const name of placeholders) $("placeholders").append(el("option", { value: name }, name));
}

/** The problem with a text; null if there is none. */
function faultOf(text) {
  const strange = [...text].find((letter) => !isWestern(letter));
  return strange ? `“${strange}” is no letter that the game servers know.` : null;
}

function showHint(words, isBad = false) {
  setText($("hint"), words);
  $("hint").classList.toggle("bad", isBad);
}

function showDraft() {
  const text = $("text").value.trim();
  const fault = faultOf(text);
  const isLive = placeholders.includes(text);
  setText($("count"), text ? `${letters(text)} letters` : "");
  $("placeholders").value = isLive ? text : "";
  $("text").setAttribute("aria-invalid", fault !== null);
  $("add").disabled = $("say").disabled = !text || fault !== null;
  $("hint").setAttribute("aria-live", "polite");
  clearTimeout(previewTimer);
  showHint(fault ?? (isLive ? "" // until the preview arrives
    : placeholders.some((name) => text.includes(name)) ? "A live text works only as the whole message."
    : letters(text) > kWindowLetters ? `The plugin's own window shows the first ${kWindowLetters} letters.` : ""), fault !== null);
  if (isLive) previewTimer = setTimeout(() => preview(text), 150);
}

/** Shows what the live text says now and refreshes it; screen readers read only the first one. */
async function preview(text) {
  const answer = await ask("POST", profilePath("preview"), { text });
  if (!answer || $("text").value.trim() !== text) return;
  showHint(answer.says ? `Players read now: ${answer.says}`
    : answer.problem ? sentence(answer.problem) : "It has nothing to say now, and would be skipped.");
  $("hint").setAttribute("aria-live", "off");
  previewTimer = setTimeout(() => preview(text), 5000);
}

async function send(path, words) {
  const text = $("text").value.trim();
  if (!text || faultOf(text)) return;
  const answer = await ask("POST", profilePath(path), { text });
  if (!answer) return;
  $("text").value = "";
  showDraft();
  await refreshMessages();
  tell(words(answer, text));
  $("text").focus();
}

$("text").addEventListener("input", showDraft);
$("placeholders").addEventListener("change", () => {
  if ($("placeholders").value) $("text").value = $("placeholders").value;
  showDraft(); // keep the focus, so that arrow keys step through all of them
});
$("compose").addEventListener("submit", (event) => {
  event.preventDefault();
  send("messages", (_, text) => `Added at the end: ${text}`);
});
$("say").addEventListener("click", () => send("say", (answer) => sentence(answer.done)));
$("dismiss").addEventListener("click", hideToast);

// --- What was sent, and who changed what ---

function showLines(items, lines) {
  while (items.children.length > lines.length) items.lastChild.remove();
  lines.forEach(([time, text, isBad], place) => {
    if (!items.children[place]) items.append(el("li", {}, el("time"), el("span")));
    const [when, what] = items.children[place].children;
    setText(when, time);
    setText(what, text);
    what.className = isBad ? "failed" : "";
  });
}

function showSent(sent) {
  $("nothing-sent").hidden = sent.length > 0;
  showLines($("sent"), sent.map((one) => [one.time,
    one.outcome === "sent" ? one.text : `${one.text} (${one.outcome === "failed" ? `not sent: ${one.reason}` : one.outcome})`,
    one.outcome === "failed"]));
}

function showLog(value) {
  $("no-log").hidden = value.lines.length > 0 || value.problem !== "";
  const lines = value.lines.map((line) => {
    const parts = /^\[(.*?)\]\[Rotacasts\] (.*)$/s.exec(line);
    return parts ? [parts[1], parts[2]] : ["", line];
  });
  showLines($("log"), value.problem ? [["", sentence(value.problem), true]] : lines);
}

// --- Start ---

const answer = await fetch("/api/session").catch(() => null);
showDraft();
if (answer?.ok) {
  signedIn(await answer.json());
  loadPlaceholders();
} else {
  signedOut(answer ? "" : "The host does not answer. Load the page again.");
}
