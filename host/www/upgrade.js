// The firmware upgrade, step by step: search, notes, download with a bar, installation.
"use strict";

const part = (id) => document.getElementById(id);
const pause = (milliseconds) => new Promise((done) => setTimeout(done, milliseconds));

const POLL = 500;
const searchOutcomes = {
  1: "There is no newer firmware for this device.",
  "-1": "The firmware list is malformed.",
  "-5": "The device could not fetch the firmware list from its server.",
};

function say(text) {
  part("state").textContent = text;
}

async function request(path, options) {
  const answer = await fetch(path, options);
  if (!answer.ok) throw new Error((await answer.text()).trim());
  return answer;
}

async function act(action) {
  const text = await (await request("/zep/fw?act=" + action, { method: "POST" })).text();
  const numberOf = (tag) => Number(text.match(`<${tag}>(-?[0-9]+)</${tag}>`)?.[1] ?? 0);
  return { result: numberOf("result"), seconds: numberOf("time") };
}

const state = async () => (await request("/zep/fwstate")).json();

const megabytes = (bytes) => (bytes / 1e6).toFixed(1) + " MB";

function showProgress(done, total) {
  part("bar").hidden = false;
  if (total > 0) part("bar").value = (100 * done) / total;
  else part("bar").removeAttribute("value");
}

async function showNotes() {
  let before = "";
  for (let polls = 0; polls < 10; polls++) {
    const answer = await fetch("/zep/fwnotes");
    const notes = answer.ok ? await answer.text() : "";
    if (notes !== "" && notes === before) break;
    before = notes;
    await pause(200);
  }
  part("notes").textContent = before;
  part("notes").hidden = before === "";
}

async function search() {
  say("Searching …");
  part("notes").hidden = true;
  part("install").hidden = true;
  part("bar").hidden = true;
  await act("0");
  const { result } = await act("1");
  const found = await state();
  // A fetch that got no answer may leave an empty list behind.
  const outcome = result === -1 && !found.list ? -5 : result;
  if (outcome !== 2) return say(searchOutcomes[outcome] ?? "The search failed.");
  if (found.image === "") return say("The firmware list holds an address that this device does not accept.");
  say("Found " + found.image + ".");
  await showNotes();
  part("install").hidden = false;
}

async function download() {
  const begin = performance.now();
  let { result } = await act("2");
  let now = await state();
  while (result === 3) {
    await pause(POLL);
    ({ result } = await act("9"));
    now = await state();
    showProgress(now.bytes, now.total);
    const speed = now.bytes / ((performance.now() - begin) / 1000);
    say(`Downloading: ${megabytes(now.bytes ?? 0)}${now.total ? " of " + megabytes(now.total) : ""}, ${megabytes(speed)}/s`);
  }
  if (result !== 4) throw new Error("Somebody else has started the upgrade over.");
  if (!now.bytes || (now.total && now.bytes !== now.total)) throw new Error("The download failed.");
}

async function awaitHandOver() {
  for (;;) {
    const { upgrade, reason } = await state();
    if (upgrade === "refused") throw new Error("The device refused the image: " + reason);
    if (upgrade !== "announced") return;
    await pause(POLL);
  }
}

async function install() {
  await download();
  const { result, seconds } = await act("4");
  if (result !== 5) throw new Error("The device did not take the image over.");
  say("The image is being checked and written. Leave the device switched on.");
  await awaitHandOver();
  for (let passed = 0; passed < seconds; passed++) {
    say(`Installed. The device is back in ${seconds - passed} seconds. Leave it switched on.`);
    showProgress(passed, seconds);
    await pause(1000);
  }
  showProgress(1, 1);
  say("The device runs its new firmware.");
}

function runsFrom(button, work) {
  button.addEventListener("click", async () => {
    const buttons = [part("search"), part("install")];
    for (const each of buttons) each.disabled = true;
    try {
      await work();
    } catch (fault) {
      part("bar").hidden = true;
      part("install").hidden = true;
      say(fault.message);
    }
    for (const each of buttons) each.disabled = false;
  });
}

part("search").hidden = false;
runsFrom(part("search"), search);
runsFrom(part("install"), () => {
  part("install").hidden = true;
  return install();
});
