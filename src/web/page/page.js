// The page around the messages: signing in, the list of servers with trouble first, and the server
// shown with its settings, what was sent and who changed what. The parts follow the host's events.
import { $, act, ask, askEach, el, follow, forgetSteps, hideToast, kChange, may, nameOf, on, request, sentence,
  setCurrent, setText, state, stopFollowing, targets, tell, warn, kAdd } from "./host.js";
import { forgetDrafts, forgetMessages, loadPlaceholders, markNext, refreshMessages, showDraft, showDraftOfChosen, showMessages }
  from "./messages.js";

const kMany = 8; // servers, from which a filter helps
const kStepPause = 1500; // ms after the last step of the interval until it is sent
const kTooOften = "You have this page open too often";
const kHiddenPoll = 60_000; // ms between two looks of a hidden tab, for its title
const rows = state.rows;
const isWide = matchMedia("(min-width: 56rem)");
let clock = null; // the host's time and this browser's at the same moment, ms
let isLive = false; // whether what is shown is what the host knows
let lastPerson = "";

// --- Signing in and out ---

function show(view) {
  for (const id of ["loading", "sign-in", "desk"]) $(id).hidden = id !== view;
  $("who").hidden = view !== "desk";
}

on.signedOut = (note = "") => {
  state.person = null;
  leave();
  rows.clear();
  state.targets.clear();
  forgetSteps();
  setText($("banner"), "");
  document.body.classList.remove("lost");
  hideToast();
  $("outcomes").hidden = true;
  setText($("sign-in-note"), note);
  show("sign-in");
  document.title = "Rotacasts";
  $("person").focus();
};

function signedIn(person) {
  if (lastPerson && person.name !== lastPerson) forgetDrafts();
  lastPerson = person.name;
  $("password").value = "";
  setText($("sign-in-problem"), "");
  clock = { host: person.now, here: performance.now() };
  state.person = person;
  emptyProfile();
  showRights();
  show("desk");
  loadPlaceholders();
  choose();
}

/** Offers what the person may do. */
function showRights() {
  setText($("name"), state.person.name);
  $("compose").hidden = $("copy").hidden = !may(kAdd);
  $("no-changes").hidden = may(kAdd);
  $("no-settings").hidden = may(kChange);
  $("switch").disabled = $("interval").disabled = !may(kChange);
  showTargets();
}

/** Takes over rights that were given or taken while the page was open. */
function showPerson(person) {
  const isChanged = person.rights.join() !== state.person.rights.join();
  state.person = person;
  if (!isChanged) return;
  forgetMessages();
  showRights();
  refreshMessages();
  tell("Your rights have been changed.");
}

$("sign-in").addEventListener("submit", (event) => {
  event.preventDefault();
  act($("sign-in"), event, async () => {
    setText($("sign-in-problem"), "");
    const { answer, words } = await request("POST", "/api/session", { name: $("person").value.trim(), password: $("password").value });
    if (answer) {
      signedIn(answer);
      ($("profile").hidden ? $("main") : $("profile-name")).focus();
    } else {
      setText($("sign-in-problem"), words.replace(/ Look at the list.*/, " Try again."));
      $("password").select();
    }
  });
});

$("sign-out").addEventListener("click", (event) => act($("sign-out"), event, async () => {
  if (await ask("DELETE", "/api/session")) on.signedOut("You have signed out.");
}));

// --- Following the host ---

let retry = 0;

function leave() {
  clearTimeout(retry);
  stopFollowing();
  isLive = false;
}

function connect() {
  leave();
  if (document.hidden || !state.person) return; // a browser has few connections
  const known = new Set();
  follow((kind, data) => {
    if (data?.now !== undefined) clock = { host: data.now, here: performance.now() };
    if (kind === "person") showPerson(data);
    if (kind === "profile") {
      known.add(data.index);
      rows.set(data.index, data);
      if (isLive) showRows();
    } else if (kind === "gone") {
      rows.delete(data);
      showRows();
    } else if (kind === "messages" && data.index === state.chosen) {
      showMessages(data);
      showSent(data.sent);
    } else if (kind === "log" && data.index === state.chosen) {
      showLog(data);
    } else if (kind === "ready") {
      for (const index of rows.keys()) if (!known.has(index)) rows.delete(index);
      if ($("banner").textContent) tell("Connected again.");
      setText($("banner"), "");
      document.body.classList.remove("lost");
      isLive = true;
      showRows();
    } else if (kind === "lost") {
      lost();
    } else if (kind === "elsewhere") {
      pause(`${kTooOften}, so this tab no longer follows the host. It does again when you press a key or the pointer.`);
    } else if (kind === "end") {
      on.signedOut("Your session has ended.");
    }
  });
}

/** Shows that nothing is live any more. */
function pause(words) {
  leave();
  document.body.classList.add("lost");
  setText($("banner"), words);
  showRows();
}

/** Waits for the connection to return by itself, unless the session has ended. */
function lost() {
  if (!state.person) return;
  pause("The connection to the host is lost; what you see may be old. Trying again…");
  retry = setTimeout(async () => {
    const { answer, status } = await request("GET", "/api/session");
    if (!state.person) return;
    if (answer) connect();
    else if (status === 401) on.signedOut("You have been signed out, or the host was started again.");
    else lost();
  }, 1500);
}

addEventListener("offline", lost);
for (const kind of ["pointerdown", "keydown"]) {
  addEventListener(kind, () => { if (!isLive && $("banner").textContent.startsWith(kTooOften)) connect(); });
}
document.addEventListener("visibilitychange", () => {
  if (!state.person) return;
  if (document.hidden) leave();
  else connect();
});
setInterval(async () => { // the title of a hidden tab still counts the servers in trouble
  if (!document.hidden || !state.person) return;
  const { answer } = await request("GET", "/api/profiles");
  if (!answer || !document.hidden || !state.person) return;
  rows.clear();
  for (const row of answer.profiles) rows.set(row.index, row);
  showRows();
}, kHiddenPoll);

// --- The list of servers ---

function stateOf(row) {
  if (row.stopped) return ["stopped", "stopped"];
  if (row.failing) return ["failing", "failing"];
  if (row.game === "unreachable" && row.on) return ["unreachable", "unreachable"];
  if (row.problem && row.game !== "unreachable") return ["failing", "a problem"];
  if (!row.on) return ["off", "switched off"];
  if (row.messages === 0) return ["off", "no messages"];
  if (row.game === "idle") return ["waiting", "no game"];
  return ["sending", "sending"];
}

/** Why a server is in trouble; empty if it is not. */
function troubleOf(row) {
  if (row.stopped || (!row.on && row.game === "unreachable")) return "";
  const why = row.problem.replace(/^profile \d+ \(.*?\): /, ""); // the heading says which
  return (row.failing && `not sent: ${row.failing}`) || why || (row.game === "unreachable" ? "the game server cannot be reached" : "");
}

/** The servers as the list shows them: those in trouble first, and among them those that fail. */
function inOrder() {
  const rank = (row) => (!troubleOf(row) ? 2 : row.failing ? 0 : 1);
  return [...rows.values()].sort((a, b) => rank(a) - rank(b) || a.index - b.index);
}

function untilNext(row) {
  if (!isLive || !row.next?.at) return "";
  const seconds = Math.max(0, Math.round((row.next.at - clock.host - (performance.now() - clock.here)) / 1000));
  return `${Math.floor(seconds / 60)}:${String(seconds % 60).padStart(2, "0")}`;
}

const listed = (names, most) => names.slice(0, most).join(", ") + (names.length > most ? ` and ${names.length - most} more` : "");
const nextText = (row) => row.next.text.trim() || "(empty)";

function makeRow(index) {
  return el("li", { "data-index": index }, el("a", { href: `#/${index}` },
    el("strong"), el("span", { class: "state" }), el("span", { class: "next" })));
}

function showRows() {
  const all = inOrder();
  const troubled = all.filter(troubleOf);
  const items = $("profiles");
  const old = new Map([...items.children].map((item) => [Number(item.dataset.index), item]));
  for (const [index, item] of old) if (!rows.has(index)) item.remove();
  const focused = document.activeElement;
  all.forEach((row, place) => {
    const item = old.get(row.index) ?? makeRow(row.index);
    if (items.children[place] !== item) items.insertBefore(item, items.children[place] ?? null);
    const [kind, words] = stateOf(row);
    const [name, stateWords] = item.firstChild.children;
    setText(name, row.folder);
    setText(stateWords, isLive ? words : "not known");
    stateWords.className = `state ${kind}`;
    setCurrent(item.firstChild, row.index === state.chosen);
  });
  if (items.contains(focused) && document.activeElement !== focused) focused.focus({ preventScroll: true });
  $("filters").hidden = all.length < kMany && !troubled.length;
  $("filter").hidden = all.length < kMany;
  setText($("troubled"), `Only those in trouble (${troubled.length})`);
  filterRows();
  const elsewhere = troubled.filter((row) => row.index !== state.chosen);
  setText($("elsewhere"), elsewhere.length ? `In trouble: ${listed(elsewhere.map((row) => row.folder), 2)}` : "");
  $("elsewhere").href = elsewhere.length === 1 ? `#/${elsewhere[0].index}` : "#/";
  if (isLive) {
    $("no-profiles").hidden = all.length > 0;
    if (state.chosen && !rows.has(state.chosen)) return void (location.hash = "#/");
    if (!state.chosen && isWide.matches && all.length) return void location.replace(`#/${Math.min(...rows.keys())}`);
  }
  showTargets();
  showProfile();
  showTimes();
  const count = troubled.length ? `(${troubled.length} in trouble) ` : "";
  document.title = count + (rows.has(state.chosen) ? `${nameOf(state.chosen)} – Rotacasts` : "Rotacasts");
}

function filterRows() {
  const words = $("filter").hidden ? "" : $("filter").value.trim().toLowerCase();
  const onlyTroubled = $("troubled").getAttribute("aria-pressed") === "true";
  for (const item of $("profiles").children) {
    const row = rows.get(Number(item.dataset.index));
    item.hidden = !row.folder.toLowerCase().includes(words) || (onlyTroubled && !troubleOf(row));
  }
}

$("filter").addEventListener("input", filterRows);
$("troubled").addEventListener("click", () => {
  $("troubled").setAttribute("aria-pressed", $("troubled").getAttribute("aria-pressed") !== "true");
  filterRows();
});

function showTimes() {
  for (const item of $("profiles").children) {
    const row = rows.get(Number(item.dataset.index));
    if (!row) continue;
    const time = untilNext(row);
    setText(item.querySelector(".next"), troubleOf(row) ? sentence(troubleOf(row)) : time ? `${time} · ${nextText(row)}`
      : row.messages === 1 ? "1 message" : `${row.messages} messages`);
  }
  const row = rows.get(state.chosen);
  if (!row) return;
  const time = untilNext(row);
  const why = !isLive ? ""
    : row.stopped ? `Stopped at the host's console; “show ${row.index}” there starts it again.`
    : row.game === "unreachable" ? "Nothing is sent while the game server is unreachable."
    : !row.on ? "Nothing is sent while this is switched off."
    : row.messages === 0 ? "There is nothing to send."
    : row.game === "idle" ? "Waiting for a game to begin."
    : "";
  setText($("next"), why || (time ? `Next in ${time}: ${nextText(row)}` : ""));
}
setInterval(showTimes, 500);

// --- One server ---

/** Shows the server that the address names. Another anchor, such as that of "Skip to the content",
    changes nothing. */
function choose() {
  const named = /^#\/(\d*)$/.exec(location.hash);
  const wanted = named || location.hash === "" ? Number(named?.[1] ?? 0) : state.chosen;
  const isNew = wanted !== state.chosen;
  state.chosen = wanted;
  document.body.classList.toggle("chosen", wanted !== 0);
  if (!state.person || (!isNew && isLive)) return;
  if (isNew) emptyProfile();
  showRows();
  connect();
}

/** Shows nothing of a server until the host has sent it. */
function emptyProfile() {
  state.targets.clear();
  $("pick").open = false;
  clearTimeout(stepTimer);
  stepTimer = 0;
  forgetMessages();
  showDraftOfChosen();
  $("sent").replaceChildren();
  $("log").replaceChildren();
  for (const id of ["outcomes", "no-messages", "nothing-sent", "no-log"]) $(id).hidden = true;
  $("messages-loading").hidden = false;
  setText($("messages-problem"), "");
}

addEventListener("hashchange", () => {
  const before = state.chosen;
  choose();
  if (before === state.chosen) return;
  if ($("toast").classList.contains("bad")) hideToast();
  (state.chosen ? $("profile-name") : $("profiles").querySelector(`[data-index="${before}"] a`))?.focus();
});
document.querySelector(".skip").addEventListener("click", (event) => {
  event.preventDefault();
  $("main").focus();
});

function showProfile() {
  const row = rows.get(state.chosen);
  $("profile").hidden = !row;
  if (!row) return;
  setText($("profile-name"), row.folder);
  setText($("profile-state"), `${row.gameCode} · ${isLive ? stateOf(row)[1] : "not known"}`);
  const trouble = troubleOf(row);
  setText($("profile-problem"), trouble && sentence(trouble));
  if (!isSwitching) $("switch").checked = row.on;
  if (document.activeElement !== $("interval") && !stepTimer) $("interval").value = row.interval;
  markNext();
}

// --- For which servers ---

function showTargets() {
  const picked = targets();
  const isMany = picked.length > 1 || picked[0] !== state.chosen;
  $("targets").hidden = rows.size < 2 || !(may(kAdd) || may(kChange));
  $("targets").classList.toggle("many", isMany);
  const count = (of) => (of === 1 ? "1 server" : `${of} servers`);
  setText($("targets-words"), isMany
    ? `Adding, saying, copying and settings are for ${count(picked.length)}: ${listed(picked.map(nameOf), 8)}.`
    : "Adding, saying and settings are for this server.");
  setText($("all-servers"), `All ${rows.size} servers`);
  $("all-servers").hidden = picked.length === rows.size;
  $("one-server").hidden = !isMany;
  const old = new Map([...$("target-list").children].map((item) => [Number(item.dataset.index), item]));
  for (const [index, item] of old) if (!rows.has(index)) item.remove();
  for (const index of [...rows.keys()].sort((a, b) => a - b)) {
    const item = old.get(index) ?? el("label", { "data-index": index }, el("input", { type: "checkbox" }), " ", el("span"));
    if (!old.has(index)) $("target-list").append(item);
    setText(item.lastChild, nameOf(index));
    item.firstChild.checked = picked.includes(index);
  }
  const others = picked.filter((index) => index !== state.chosen).length;
  setText($("copy"), others ? `Copy this list to ${count(others)}` : "Copy this list to…");
  showDraft();
}

function retarget(indexes) {
  state.targets = new Set(indexes);
  showTargets();
}

$("target-list").addEventListener("change", () => {
  retarget([...$("target-list").querySelectorAll(":checked")].map((box) => Number(box.parentElement.dataset.index)));
});
$("all-servers").addEventListener("click", () => {
  retarget(rows.keys());
  (may(kAdd) ? $("text") : $("one-server")).focus();
});
$("one-server").addEventListener("click", () => {
  retarget([]);
  $("all-servers").focus();
});
on.retarget = retarget;
on.undone = (indexes) => {
  if (indexes.includes(state.chosen)) refreshMessages();
};

// --- Switch and interval ---

let isSwitching = false;
let stepTimer = 0;

/** Changes a setting of each server that the act is for; `before` are the values to go back to. */
async function set(route, field, value, words) {
  const before = new Map(targets().map((index) => [index, field === "on" ? rows.get(index).on : rows.get(index).minutes]));
  const put = (index, to) => request("PUT", `/api/profiles/${index}/${route}`, { [field]: to });
  return askEach([...before.keys()], {
    title: words.replace(".", ""),
    words: () => words,
    one: (index) => put(index, value),
    step: words.toLowerCase().replace(".", ""),
    undo: (index) => ![null, value].includes(before.get(index)) && (() => put(index, before.get(index))),
  });
}

$("switch").addEventListener("change", () => {
  const isOn = $("switch").checked;
  if (isSwitching) return void ($("switch").checked = !isOn); // the first press is under way
  isSwitching = true;
  act($("switch"), null, async () => {
    const done = await set("switch", "on", isOn, isOn ? "Switched on." : "Switched off.");
    for (const index of done.keys()) rows.get(index).on = isOn; // earlier than the events
    isSwitching = false;
    showRows();
  });
});

/** Sends the interval, unless it is what the server has. */
function sendInterval() {
  clearTimeout(stepTimer);
  stepTimer = 0;
  const minutes = $("interval").valueAsNumber;
  const row = rows.get(state.chosen);
  if (!row || ($("interval").value === row.interval && targets().length === 1)) return;
  if (!Number.isInteger(minutes) || minutes < 0 || minutes > 30) {
    warn("An interval is a whole number of minutes from 0 to 30.");
    $("interval").value = row.interval;
    return;
  }
  act($("interval"), null, async () => {
    const done = await set("interval", "minutes", minutes, `A message every ${minutes} min.`);
    for (const index of done.keys()) rows.get(index).interval = String(minutes);
    showRows();
  });
}

$("interval").addEventListener("input", () => {
  clearTimeout(stepTimer);
  stepTimer = setTimeout(sendInterval, kStepPause);
});
$("interval").addEventListener("blur", () => stepTimer && sendInterval());
$("interval").addEventListener("keydown", (event) => event.key === "Enter" && sendInterval());

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
  const noteOn = ({ outcome, reason }) => (outcome === "failed" ? `not sent: ${reason}` : outcome === "sent" ? reason : outcome);
  showLines($("sent"), sent.map((one) => [one.time, noteOn(one) ? `${one.text} (${noteOn(one)})` : one.text,
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

const start = await request("GET", "/api/session");
if (start.answer) signedIn(start.answer);
else on.signedOut(start.status ? "" : "The host does not answer. Load the page again.");
