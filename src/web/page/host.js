// What the page asks of the host, what came of it, and what it hears from the host. The tabs of a
// browser share one stream of events.

export const $ = (id) => document.getElementById(id);
export const kAdd = "Add/Remove Rotacasts";
export const kChange = "Change Rotacasts Settings";
const kRequestSeconds = 10;
const kUnderWayAfter = 500; // ms
const kAtOnce = 4; // requests; a browser has six connections to a host
const kSteps = 50; // that can be undone

/** What all parts of the page know: the person, the profiles by index, the one shown (0: none) and
    those that an act is for. */
export const state = { person: null, rows: new Map(), chosen: 0, targets: new Set() };
/** Set by the page: the session turns out to have ended; acts of these servers were undone; only
    these servers are left to do what was asked of more. */
export const on = { signedOut: () => {}, undone: () => {}, retarget: () => {} };

export const may = (right) => state.person?.rights.includes(right) ?? false;
export const nameOf = (index) => state.rows.get(index)?.folder ?? `Server ${index}`;
/** The servers that an act is for: those picked, or the one shown. */
export function targets() {
  const picked = [...state.targets].filter((index) => state.rows.has(index));
  return picked.length ? picked : [state.chosen];
}

export const sentence = (words) =>
  words.charAt(0).toUpperCase() + words.slice(1) + (/[.!?…]$/.test(words) ? "" : ".");

/** The page's words for what was done, and what the host adds to them, such as what it could not log. */
export function withNotes(words, { done = "" }) {
  const notes = done.split("\n").slice(1);
  return notes.length ? sentence(`${words} – ${notes.join("; ")}`) : words;
}

/** Makes an element with attributes and children; strings become text, never markup. */
export function el(tag, attributes = {}, ...children) {
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
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

export function setCurrent(element, isCurrent) {
  if (isCurrent) element.setAttribute("aria-current", "true");
  else element.removeAttribute("aria-current");
}

// --- Requests ---

/** Sends a request. Returns { answer }, or { words, status } with the reason; without a status the
    host may have done it. Never throws. */
export async function request(method, path, body) {
  try {
    const response = await fetch(path, {
      method,
      signal: AbortSignal.timeout(kRequestSeconds * 1000),
      ...(method === "GET" ? {} : { headers: { "Content-Type": "application/json" }, body: JSON.stringify(body ?? {}) }),
    });
    const answer = await response.json();
    return response.ok ? { answer } : { status: response.status, words: sentence(answer.words) };
  } catch (error) {
    if (error.name === "SyntaxError") return { words: "The host answered strangely. Look at the list before you try again." };
    const silence = error.name === "TimeoutError" ? `has not answered for ${kRequestSeconds} seconds` : "does not answer";
    return { words: `The host ${silence}. Look at the list before you try again.` };
  }
}

/** The same, and shows why there is no answer. Returns the answer or null. */
export async function ask(method, path, body) {
  const { answer, status, words } = await request(method, path, body);
  if (status === 401) on.signedOut("You have been signed out.");
  else if (!answer) warn(words);
  return answer ?? null;
}

const busy = new Set();

/** Does one thing at a time with a control: a second press meanwhile, or the second click of a
    double click, does nothing. Says that it is under way if it takes long. */
export async function act(control, event, work) {
  if (busy.has(control) || event?.detail > 1 || event?.repeat) return;
  busy.add(control);
  const slow = setTimeout(() => {
    control.setAttribute("aria-busy", "true");
    tell(kUnderWay, { seconds: kRequestSeconds });
  }, kUnderWayAfter);
  try {
    await work();
  } finally {
    clearTimeout(slow);
    busy.delete(control);
    control.removeAttribute("aria-busy");
    if ($("toast-words").textContent === kUnderWay) hideToast();
  }
}

// --- Several servers ---

/** Asks several servers, each for itself; `one(index)` is a request, and `undo(index, answer)`, if
    given, a function that takes it back with a request. Several outcomes are shown as a list under
    `title`, one as `words(answer)`. Returns the indexes and answers of those that did it. */
export async function askEach(indexes, { title, words, one, undo, step }) {
  const told = (answer) => withNotes(words(answer), answer);
  const results = new Map();
  const waiting = [...indexes];
  const askNext = async () => {
    for (let index; (index = waiting.shift()) !== undefined;) results.set(index, await one(index));
  };
  await Promise.all(Array.from({ length: kAtOnce }, askNext));
  if ([...results.values()].some(({ status }) => status === 401)) {
    on.signedOut("You have been signed out.");
    return new Map();
  }
  const done = new Map([...results].filter(([, { answer }]) => answer).map(([index, { answer }]) => [index, answer]));
  const parts = undo ? [...done].map(([index, answer]) => [index, undo(index, answer)]).filter(([, back]) => back) : [];
  remember(step, parts);
  const isUndoable = parts.length > 0;
  if (indexes.length > 1) {
    showOutcomes(title, isUndoable, indexes.map((index) => (done.has(index)
      ? [index, true, told(done.get(index))] : [index, false, results.get(index).words])));
  } else if (done.size) {
    tell(told(done.get(indexes[0])), { isUndoable });
  } else {
    warn(results.get(indexes[0]).words);
  }
  return done;
}

let outcomesTitle = "";

/** Shows what came of an act on several servers, failures first. */
function showOutcomes(title, isUndoable, outcomes) {
  outcomesTitle = title;
  outcomes.sort((a, b) => a[1] - b[1]);
  $("outcome").replaceChildren(...outcomes.map(([index]) => el("li", { "data-index": index }, el("b"), " ", el("span"))));
  for (const [index, isDone, words] of outcomes) setOutcome(outcomeOf(index), isDone, words);
  $("outcomes").hidden = false;
  const failed = outcomes.filter(([, isDone]) => !isDone).length;
  if (failed) $("outcomes").scrollIntoView({ block: "nearest" });
  toast($("outcomes-title").textContent, { isBad: failed > 0, isUndoable, seconds: failed ? 12 : 6 });
}

/** The outcome of one server in the list, for setOutcome(). */
export const outcomeOf = (index) => $("outcome").querySelector(`[data-index="${index}"]`);

/** Sets an outcome, also later if it is known only then. Another act's list stays as it is. */
export function setOutcome(item, isDone, words) {
  if (!item?.isConnected) return;
  const others = [...$("outcome").children];
  item.className = isDone ? "" : "failed";
  setText(item.firstChild, `${isDone ? "✓" : "✗"} ${nameOf(Number(item.dataset.index))}`);
  setText(item.lastChild, words);
  if (!isDone) $("outcome").insertBefore(item, others.find((one) => one !== item && one.className !== "failed") ?? null);
  const failed = others.filter((one) => one.className === "failed").length;
  setText($("outcomes-title"), failed ? `${outcomesTitle}: ${others.length - failed} did, ${failed} did not`
    : `${outcomesTitle}: all ${others.length} did`);
}

// --- What came of it ---

const kUnderWay = "Under way…";
let toastTimer = 0;

function toast(words, { isBad = false, isUndoable = false, seconds = 6 } = {}) {
  clearTimeout(toastTimer);
  const canUndo = isUndoable && steps.length > 0;
  setText($("toast-words"), words);
  $("toast").classList.toggle("bad", isBad);
  $("undo").hidden = !canUndo;
  $("toast").hidden = false;
  const voice = $(isBad ? "warned" : "told");
  setText(voice, "");
  setText(voice, canUndo ? `${words} Control Z undoes it.` : words);
  toastTimer = setTimeout(() => fadeToast(seconds), seconds * 1000);
}

/** Hides the toast, but not while it is pointed at or has the focus. */
function fadeToast(seconds) {
  if ($("toast").matches(":hover, :focus-within")) toastTimer = setTimeout(() => fadeToast(seconds), seconds * 1000);
  else hideToast();
}

export function hideToast() {
  clearTimeout(toastTimer);
  const hadFocus = $("toast").contains(document.activeElement);
  $("toast").hidden = true;
  if (hadFocus) $("profile-name").focus();
}

export const tell = (words, more) => toast(words, more);
export const warn = (words) => toast(words, { isBad: true, seconds: 12 });

$("dismiss").addEventListener("click", hideToast);
$("close-outcomes").addEventListener("click", () => {
  $("outcomes").hidden = true;
  $("profile-name").focus();
});

// --- Undo ---

const steps = [];

/** Remembers how to take back what was done until the next sign-in. `parts` has for each server its
    index and a function that returns request()'s result. */
export function remember(words, parts) {
  if (parts.length) steps.push({ words, parts });
  if (steps.length > kSteps) steps.shift();
  showSteps();
}

export function forgetSteps() {
  steps.length = 0;
  showSteps();
}

function showSteps() {
  $("undo-last").hidden = steps.length === 0;
  if (steps.length) setText($("undo-last"), `Undo: ${steps.at(-1).words}`);
}

/** Takes back the last step. What could not be asked of the host stays a step. */
function undoLast(event) {
  act($("undo-last"), event, async () => {
    const step = steps.at(-1);
    if (!step) return;
    const parts = new Map(step.parts);
    const unanswered = [];
    const undone = `Undone: ${step.words}`;
    await askEach([...parts.keys()], { title: undone, words: () => undone, one: async (index) => {
      const result = await parts.get(index)();
      if (!result.answer && !result.status) unanswered.push([index, parts.get(index)]);
      return result;
    } });
    if (unanswered.length) step.parts = unanswered;
    else if (steps.includes(step)) steps.splice(steps.indexOf(step), 1);
    showSteps();
    on.undone([...parts.keys()]);
  });
}

for (const id of ["undo", "undo-last"]) $(id).addEventListener("click", undoLast);
addEventListener("keydown", (event) => {
  if (event.key === "Escape" && !event.defaultPrevented) return hideToast();
  const isUndo = event.key === "z" && (event.ctrlKey || event.metaKey) && !event.shiftKey && !event.altKey;
  const isTyping = event.target.matches("textarea, input:not([type=checkbox])") && event.target.value !== "";
  if (!isUndo || isTyping || !steps.length) return; // a text field has its own undo
  event.preventDefault();
  undoLast(event);
});

// --- Events ---

const kSilenceSeconds = 40; // the host sends something every 15
const channel = globalThis.BroadcastChannel && navigator.locks ? new BroadcastChannel("rotacasts") : null;
let following = null;

export function stopFollowing() {
  clearTimeout(following?.silence);
  following?.end.abort();
  following = null;
}

/** Calls `hear(kind, data)` for every event of the host, first for all that there is, then "ready";
    and "lost" once if the connection breaks. One tab of the browser reads the stream for all that
    show the same profile to the same person. */
export function follow(hear) {
  stopFollowing();
  const mine = following = {
    name: JSON.stringify([state.person.name, state.chosen]), end: new AbortController(), latest: null, silence: 0,
    hear(kind, data) {
      if (mine !== following) return;
      clearTimeout(mine.silence);
      mine.silence = setTimeout(() => mine.hear("lost"), kSilenceSeconds * 1000);
      hear(kind, data);
    },
  };
  const read = () => readStream(mine);
  if (!channel) return void read();
  channel.postMessage({ name: mine.name, kind: "tell me" });
  navigator.locks.request(`rotacasts ${mine.name}`, { signal: mine.end.signal }, read).catch(() => {}); // was aborted
}

/** Reads the stream until the following ends and passes it on to the other tabs. */
function readStream(mine) {
  mine.latest = new Map();
  const source = new EventSource(`/api/events?profile=${state.chosen}`);
  for (const kind of ["profile", "gone", "messages", "log", "person", "still", "ready", "end", "elsewhere"]) {
    source.addEventListener(kind, (event) => {
      const data = JSON.parse(event.data);
      const part = kind === "profile" ? `profile ${data.index}` : kind;
      if (kind === "gone") mine.latest.delete(`profile ${data}`);
      else if (kind !== "still") mine.latest.set(part, { kind, data, at: performance.now() });
      channel?.postMessage({ name: mine.name, kind, data });
      mine.hear(kind, data);
    });
  }
  source.onerror = () => mine.hear("lost");
  return new Promise((resolve) => mine.end.signal.addEventListener("abort", () => resolve(source.close())));
}

if (channel) channel.onmessage = ({ data: { name, kind, data } }) => {
  if (name !== following?.name) return;
  if (kind !== "tell me") return following.hear(kind, data);
  if (!following.latest?.has("ready")) return; // whoever asks hears it when it comes
  const parts = [...following.latest.values()].sort((a, b) => (a.kind === "ready") - (b.kind === "ready")); // "ready" last
  for (const { kind, data, at } of parts) {
    const now = data.now + performance.now() - at; // the host's clock has gone on
    channel.postMessage({ name, kind, data: kind === "ready" ? { now } : data });
  }
};
