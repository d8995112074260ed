// SPDX-License-Identifier: Apache-2.0
"use strict";

const SHOWN_LINES = 1000; // in the page; more would make it slow
const KEPT_LINES = 20000; // for the filter
const HEALTH_PAUSE = 3000;
const RECONNECT_PAUSE = 2000;

const byId = (id) => document.getElementById(id);

/** An element with its class, its text and what stands in it. */
function make(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.append(...children);
  return element;
}

const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

// The host, and the token that it may ask for.

class TokenNeeded extends Error {}

const host = {
  token: "", // in memory only
  nextId: 1,

  headers(more = {}) {
    return this.token ? { ...more, Authorization: `Bearer ${this.token}` } : more;
  },

  async fetch(path, options = {}) {
    const response = await fetch(path, { cache: "no-store", credentials: "omit", ...options, headers: this.headers(options.headers) });
    if (response.status === 401) throw new TokenNeeded();
    return response;
  },

  async post(request) {
    const response = await this.fetch("/", {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify(request),
    });
    return response.json();
  },

  async health() {
    return (await this.fetch("/healthz")).json();
  },

  async discover() {
    return (await this.post({ jsonrpc: "2.0", id: 0, method: "rpc.discover" })).result;
  },
};

const tokenDialog = {
  asked: null,

  /** Waits until there is a token that the host takes. */
  ask() {
    this.asked ??= new Promise((resolve) => {
      byId("token-error").textContent = host.token ? "The host does not take this token." : "";
      byId("token").value = "";
      byId("token-dialog").showModal();
      byId("token-form").onsubmit = async (event) => {
        event.preventDefault();
        host.token = byId("token").value.trim();
        if (!(await this.isTaken())) return;
        byId("token-dialog").close();
        this.asked = null;
        resolve();
      };
    });
    return this.asked;
  },

  async isTaken() {
    try {
      await host.health();
      return true;
    } catch (error) {
      const refused = error instanceof TokenNeeded || error instanceof TypeError;
      byId("token-error").textContent = refused ? "The host does not take this token." : String(error);
      byId("token").select();
      return !refused;
    }
  },
};
byId("token-dialog").addEventListener("cancel", (event) => event.preventDefault());

/** Does what the host may ask a token for, as often as it does. */
async function withToken(action) {
  for (;;) {
    try {
      return await action();
    } catch (error) {
      if (!(error instanceof TokenNeeded)) throw error;
      await tokenDialog.ask();
    }
  }
}

// Plug-ins.

function showConnection(text, kind) {
  const badge = byId("connection");
  if (badge.textContent !== text) badge.textContent = text;
  badge.className = `badge ${kind}`;
}

function pluginBadge(plugin) {
  const name = plugin.file.split("/").pop();
  const text = plugin.bound ? `${name}: bound, ${plugin.methods} methods` : `${name}: waits for its service`;
  return make("li", { class: plugin.bound ? "badge good" : "badge", title: plugin.file }, text);
}

function streamBadge(stream) {
  return make("li", { class: "badge bad" }, `${stream.name}: ${stream.trouble ?? "lines were lost"} (${stream.dropped} dropped)`);
}

let lastHealth = "";

async function showHealth() {
  const report = await withToken(() => host.health());
  const text = JSON.stringify(report);
  if (text === lastHealth) return;
  lastHealth = text;
  const troubled = (report.streams ?? []).filter((stream) => stream.trouble || stream.dropped > 0);
  byId("plugins").replaceChildren(...report.plugins.map(pluginBadge), ...troubled.map(streamBadge));
  await loadMethods();
}

async function watchHealth() {
  for (;;) {
    try {
      await showHealth();
    } catch {
      lastHealth = "";
      showConnection("not reached", "bad");
    }
    await pause(HEALTH_PAUSE);
  }
}

// Methods and their forms.

const methods = new Map();
let chosen = null;

async function loadMethods() {
  const found = (await withToken(() => host.discover())).methods;
  methods.clear();
  for (const method of found) methods.set(method.name, method);
  listMethods();
  if (!methods.has(chosen) && found.length > 0) choose(found[0].name);
  if (found.length === 0) byId("call").disabled = true;
}

function listMethods() {
  const wanted = byId("method-filter").value.toLowerCase();
  const shown = [...methods.values()].filter((method) => `${method.name} ${method.summary ?? ""}`.toLowerCase().includes(wanted));
  byId("method-count").textContent = String(methods.size);
  byId("methods").replaceChildren(...shown.map(methodItem));
}

function methodItem(method) {
  const button = make("button", { type: "button", "data-method": method.name, "aria-current": String(method.name === chosen) },
    make("span", { class: "name" }, method.name), make("span", { class: "what" }, method.summary ?? ""));
  button.addEventListener("click", () => choose(method.name));
  return make("li", {}, button);
}

function choose(name) {
  chosen = name;
  const method = methods.get(name);
  for (const button of byId("methods").querySelectorAll("button"))
    button.setAttribute("aria-current", String(button.dataset.method === name));
  byId("method-name").textContent = name;
  byId("method-summary").textContent = method.description ?? method.summary ?? "Nothing describes this method.";
  byId("fields").replaceChildren(...method.params.map(field));
  byId("answer").hidden = true;
  byId("call").disabled = false;
  byId("example").disabled = !method.examples?.length || method.params.length === 0;
  showMeanings(method["x-reply"]);
  fillExample(method);
}

function showMeanings(reply) {
  byId("about").hidden = !reply;
  const meanings = reply ? [["0, 1, ...", reply.success], ...Object.entries(reply.failures).reverse()] : [];
  byId("meanings").replaceChildren(...meanings.flatMap(([code, text]) => [make("dt", {}, code), make("dd", {}, text)]));
}

/** The schemas that a value may keep to. */
function choices(schema) {
  return schema.anyOf ?? schema.oneOf ?? [schema];
}

function typesOf(schema) {
  return choices(schema).flatMap((one) => one.type ?? []);
}

function inputFor(schema) {
  if (schema.enum) {
    const texts = [...new Set(schema.enum.map(String))];
    return make("select", {}, ...texts.map((text) => make("option", { value: text }, text)));
  }
  if ((schema.maxLength ?? 0) > 4096) return make("textarea", { rows: "3", spellcheck: "false" });
  return make("input", { type: "text", autocomplete: "off", spellcheck: "false", inputmode: typesOf(schema)[0] === "integer" ? "numeric" : "text" });
}

function field(param) {
  const id = `param-${param.name}`;
  const input = inputFor(param.schema ?? {});
  for (const [key, value] of Object.entries({ id, name: param.name, "aria-describedby": `${id}-hint ${id}-error` })) input.setAttribute(key, value);
  if (param.required) input.setAttribute("aria-required", "true");
  const type = `${typesOf(param.schema ?? {}).join(" or ")}${param.required ? "" : ", optional"}`;
  const label = make("label", { for: id }, make("span", { class: "key" }, param.name), make("span", { class: "type" }, type));
  const hint = [param.summary, param.description].filter(Boolean).join(". ").replace("..", ".");
  return make("div", { class: "field" }, label, input, make("p", { class: "hint", id: `${id}-hint` }, hint),
    make("p", { class: "error", id: `${id}-error`, role: "alert" }));
}

function fillExample(method) {
  for (const param of method.examples?.[0]?.params ?? []) {
    const input = byId(`param-${param.name}`);
    if (input) input.value = String(param.value);
  }
  clearErrors();
}

/** A field's text as the first type that it can be. */
function typed(text, schema) {
  for (const type of typesOf(schema)) {
    if (type === "string") return text;
    if (type === "boolean" && /^(true|false)$/.test(text)) return text === "true";
    if (type === "integer" && /^-?\d+$/.test(text)) return Number(text);
    if (type === "number" && text !== "" && !Number.isNaN(Number(text))) return Number(text);
    if (type === "object" || type === "array") return JSON.parse(text);
  }
  return text;
}

function paramsOfForm(method) {
  const params = {};
  for (const param of method.params) {
    const text = byId(`param-${param.name}`).value;
    if (text !== "" || param.required) params[param.name] = typed(text, param.schema ?? {});
  }
  return params;
}

function clearErrors() {
  for (const error of byId("fields").querySelectorAll(".error")) error.textContent = "";
  for (const input of byId("fields").querySelectorAll("[aria-invalid]")) input.removeAttribute("aria-invalid");
}

/** Tells what is wrong beside the field that the host names; false when it names none. */
function showFieldError(text) {
  const name = /^[^"]*"([^"]+)"/.exec(text)?.[1];
  const input = name && byId(`param-${name}`);
  if (!input) return false;
  byId(`param-${name}-error`).textContent = text.replace(/^[^:"]*: /, "");
  input.setAttribute("aria-invalid", "true");
  input.focus();
  return true;
}

// Calls.

const history = []; // the latest first
const waiting = []; // for their reply line

async function callMethod(event) {
  event.preventDefault();
  const method = methods.get(chosen);
  clearErrors();
  const params = paramsOfForm(method);
  const request = { jsonrpc: "2.0", id: host.nextId++, method: method.name };
  if (method.params.length > 0) request.params = params;
  const entry = addHistory(request, method["x-reply"]);
  showAnswer("", entry);
  try {
    const response = await withToken(() => host.post(request));
    showAnswer(JSON.stringify(response, null, 2), entry);
    takeResponse(entry, response);
  } catch (error) {
    settle(entry, `not sent: ${error.message}`, "bad");
    showAnswer(`The host cannot be reached: ${error.message}`, entry);
  }
}

function takeResponse(entry, response) {
  if (!response.error) {
    settle(entry, entry.replied ?? (entry.reply ? "accepted, the reply has not come yet" : "done"), entry.replied ? undefined : entry.reply ? "" : "good");
    return;
  }
  forget(entry);
  settle(entry, `${response.error.message} (${response.error.code})`, "bad");
  if (entry.method === chosen && typeof response.error.data === "string") showFieldError(response.error.data);
}

function showAnswer(text, entry) {
  byId("answer").hidden = text === "";
  byId("answer-text").textContent = text;
  byId("reply").dataset.call = String(entry.id);
  showReply(entry);
}

function showReply(entry) {
  const reply = byId("reply");
  if (reply.dataset.call !== String(entry.id)) return;
  reply.textContent = entry.replied ?? "";
  reply.className = entry.replied ? entry.kind : "";
}

/** A line may be the reply to the oldest call that waits for one of its kind. */
function matchReply(line) {
  const index = waiting.findIndex((entry) => line.startsWith(entry.reply.line));
  if (index < 0) return;
  const [entry] = waiting.splice(index, 1);
  const code = line.slice(entry.reply.line.length);
  const failed = code.startsWith("-");
  entry.replied = `Reply ${code}: ${failed ? entry.reply.failures[code] ?? "failed" : entry.reply.success}`;
  settle(entry, entry.replied, failed ? "bad" : "good");
  showReply(entry);
}

function forget(entry) {
  const index = waiting.indexOf(entry);
  if (index >= 0) waiting.splice(index, 1);
}

function settle(entry, text, kind) {
  if (kind !== undefined) entry.kind = kind;
  entry.outcome.textContent = text;
  entry.outcome.className = `outcome ${entry.kind}`;
}

const shellQuoted = (text) => `'${text.replaceAll("'", "'\\''")}'`;

function curlCommand(request) {
  const token = host.token ? '--oauth2-bearer "$TOKEN" ' : "";
  return `curl ${token}--json ${shellQuoted(JSON.stringify(request))} ${location.origin}/`;
}

function addHistory(request, reply) {
  const command = curlCommand(request);
  const outcome = make("span", { class: "outcome" }, "sent");
  const copy = make("button", { type: "button", class: "secondary", "aria-label": `Copy the curl command of ${request.method}` }, "Copy");
  copy.addEventListener("click", () => copyText(command, copy));
  const entry = { id: request.id, method: request.method, reply, outcome, kind: "" };
  byId("history").prepend(make("li", {},
    make("div", { class: "head" }, make("span", { class: "name" }, request.method), outcome),
    make("div", { class: "command" }, make("code", {}, command), copy)));
  history.unshift(entry);
  if (history.length > 200) {
    history.pop();
    byId("history").lastElementChild.remove();
  }
  byId("history-count").textContent = String(history.length);
  if (reply) waiting.push(entry);
  return entry;
}

async function copyText(text, button) {
  try {
    await navigator.clipboard.writeText(text);
    button.textContent = "Copied";
  } catch { // a page that came without encryption may not use the clipboard
    getSelection().selectAllChildren(button.previousElementSibling);
    button.textContent = document.execCommand("copy") ? "Copied" : "Press Ctrl+C";
  }
  setTimeout(() => { button.textContent = "Copy"; }, 1500);
}

// Live lines.

const lines = { kept: [], fresh: [], paused: false, total: 0, drawing: false };

function lineText(event) {
  if (event.kind === "line") return event.data.line;
  if (event.kind === "gap") return `${event.data.missed ?? "Some"} events were missed`;
  const code = event.data.code === 0 ? "" : `, error ${event.data.code}`;
  return `${event.data.method || "(no method)"} took ${event.data.duration_us} µs${code}`;
}

function takeEvent(event) {
  if (event.kind === "line") {
    lines.total += 1;
    matchReply(event.data.line);
  }
  event.text = lineText(event);
  lines.kept.push(event);
  if (lines.kept.length > KEPT_LINES) lines.kept.splice(0, lines.kept.length - KEPT_LINES);
  lines.fresh.push(event);
  if (lines.fresh.length > KEPT_LINES) lines.fresh.splice(0, lines.fresh.length - KEPT_LINES);
  drawSoon();
}

function drawSoon() {
  if (lines.drawing) return;
  lines.drawing = true;
  requestAnimationFrame(() => {
    lines.drawing = false;
    draw();
  });
}

function isWanted(event) {
  return event.text.toLowerCase().includes(byId("line-filter").value.toLowerCase());
}

/** Adds what has come since the last time, all at once. */
function draw() {
  byId("line-count").textContent = lines.paused ? `${lines.total}, ${lines.fresh.length} waiting` : String(lines.total);
  if (lines.paused || lines.fresh.length === 0) return;
  const list = byId("lines");
  const follows = list.scrollTop + list.clientHeight >= list.scrollHeight - 30;
  list.append(...lines.fresh.filter(isWanted).slice(-SHOWN_LINES).map(lineItem));
  lines.fresh = [];
  while (list.childElementCount > SHOWN_LINES) list.firstElementChild.remove();
  if (follows) list.scrollTop = list.scrollHeight;
}

function redraw() {
  byId("lines").replaceChildren(...lines.kept.filter(isWanted).slice(-SHOWN_LINES).map(lineItem));
  lines.fresh = [];
  byId("lines").scrollTop = byId("lines").scrollHeight;
  draw();
}

function lineItem(event) {
  const time = (event.data.time ?? "").slice(11, 23);
  const kind = event.kind === "call" && event.data.code !== 0 ? "call bad" : event.kind;
  return make("li", {}, make("time", { datetime: event.data.time ?? "" }, time), make("span", { class: `text ${kind}` }, event.text));
}

function togglePause() {
  lines.paused = !lines.paused;
  byId("pause").setAttribute("aria-pressed", String(lines.paused));
  byId("pause").textContent = lines.paused ? "Go on" : "Pause";
  drawSoon();
}

/** One block of the stream: fields, one a line. */
function parseEvent(block) {
  const event = { id: "", kind: "", data: null };
  for (const line of block.split("\n")) {
    if (line.startsWith("id: ")) event.id = line.slice(4);
    else if (line.startsWith("event: ")) event.kind = line.slice(7);
    else if (line.startsWith("data: ")) event.data = JSON.parse(line.slice(6));
  }
  return event;
}

let lastId = "0"; // all that the host keeps, at first

/** Reads the stream until it ends. EventSource would do, but cannot send a token. */
async function readEvents() {
  const response = await withToken(() => host.fetch("/events", { headers: { "Last-Event-ID": lastId } }));
  if (!response.ok) throw new Error(`status ${response.status}`);
  showConnection("live", "good");
  const reader = response.body.pipeThrough(new TextDecoderStream()).getReader();
  let rest = "";
  for (;;) {
    const { done, value } = await reader.read();
    if (done) return;
    const blocks = (rest + value).split("\n\n");
    rest = blocks.pop();
    for (const event of blocks.map(parseEvent)) {
      if (event.id) lastId = event.id;
      if (event.data) takeEvent(event);
    }
  }
}

async function watchEvents() {
  for (;;) {
    try {
      await readEvents();
      showConnection("the stream has ended", "");
    } catch (error) {
      showConnection(error.message.startsWith("status") ? `no live lines (${error.message})` : "not reached", "bad");
    }
    await pause(RECONNECT_PAUSE);
  }
}

byId("form").addEventListener("submit", callMethod);
byId("example").addEventListener("click", () => fillExample(methods.get(chosen)));
byId("method-filter").addEventListener("input", listMethods);
byId("line-filter").addEventListener("input", redraw);
byId("pause").addEventListener("click", togglePause);
watchHealth();
watchEvents();
