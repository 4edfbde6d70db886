// The device's pages, used as a person uses them. The tests run in their order, on one device and in one browser.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { after, before, test } from "node:test";
import { chromium } from "playwright-core";

const base = process.env.PENDRA_DEVICE_URL;
const password = "bramble-1234";
const pages = { status: "/", uplink: "/uplink", wireless: "/wireless", safety: "/safety", system: "/system",
  upgrade: "/upgrade" };
const sizes = { phone: { width: 390, height: 844 }, desk: { width: 1280, height: 800 } };

let context;
let page;
const sent = []; // every request of the browser
const complaints = []; // what pages throw, and what the browser blocks

before(async () => {
  context = await chromium.launchPersistentContext(process.env.PENDRA_PROFILE, {
    executablePath: process.env.PENDRA_CHROMIUM,
    headless: true,
    viewport: sizes.desk,
    args: ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-background-networking",
      "--disable-component-update", "--disable-sync"],
  });
  context.setDefaultTimeout(15000);
  page = await context.newPage();
  page.on("request", (request) => sent.push(request.url() + "\n" + (request.postData() ?? "")));
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("console", (message) => {
    if (/Content Security Policy|Refused to/.test(message.text())) complaints.push(message.text());
  });
});

after(async () => {
  await context?.close();
});

const open = (path) => page.goto(base + path);
const pathNow = () => new URL(page.url()).pathname;
const node = (path) =>
  execFileSync(process.env.PENDRA_XTREE, ["get", path], { encoding: "utf8" }).replace(/\n$/, "");
const nodeExists = (path) => {
  try {
    node(path);
    return true;
  } catch {
    return false;
  }
};
const journal = () => readFileSync(process.env.PENDRA_JOURNAL, "utf8");

async function shoot(name) {
  for (const [size, viewport] of Object.entries(sizes)) {
    await page.setViewportSize(viewport);
    await page.screenshot({ path: `${process.env.PENDRA_SCREENSHOTS}/${name}-${size}.png`, fullPage: true });
    const tooWide = await page.evaluate(() => document.documentElement.scrollWidth > window.innerWidth);
    assert.equal(tooWide, false, `${name} is wider than a ${size}`);
  }
}

async function save(form) {
  await form.getByRole("button", { name: "Save", exact: true }).click();
}

// What the page says when it took a form; in other cases there is no such message, and the wait for it fails.
const saved = () => page.locator(".message.good").innerText();

const radioForm = () => page.locator("form", { has: page.locator("#zep_Wl2_WirelessName") });
const accessCard = () => page.locator(".card", { has: page.locator("#zep_Wl2_Acl_WlAcEnbl") });

test("a page asks a stranger to log in", async () => {
  await open("/wireless");
  assert.equal(pathNow(), "/login");
  await shoot("login");
});

test("a wrong password is told in words", async () => {
  await open("/login");
  await page.getByLabel("Device password").fill("hedgehog");
  await page.getByRole("button", { name: "Log in" }).click();
  await page.getByText("The password is wrong.").waitFor();
  assert.equal(pathNow(), "/login");
});

test("the right password opens the status page and never crosses the network", async () => {
  sent.length = 0;
  await page.getByLabel("Device password").fill(password);
  await page.keyboard.press("Enter");
  await page.getByRole("heading", { name: "Status" }).waitFor();
  assert.equal(pathNow(), "/");
  const logins = sent.filter((request) => request.startsWith(base + "/zep/login"));
  assert.equal(logins.length, 1);
  assert.match(logins[0], /\nPendraKey=[0-9a-f]{32}$/);
  assert.ok(!sent.some((request) => request.includes(password)));
});

test("the status page shows the device, its radios and its stations", async () => {
  await open("/");
  const text = await page.locator("main").innerText();
  for (const words of ["Bramble Router", "PB100", "Ethernet", "DHCP", "Bramble 5G", "-58 dBm"]) {
    assert.ok(text.includes(words), words);
  }
  assert.equal(await page.getByRole("img", { name: "-58 dBm, 3 of 4 bars" }).count(), 1);
});

test("every page fits a phone and a desk", async () => {
  for (const [name, path] of Object.entries(pages)) {
    await open(path);
    await shoot(name);
  }
});

test("every field has a label, and the keyboard reaches it visibly", async () => {
  for (const path of Object.values(pages)) {
    await open(path);
    const unnamed = await page.evaluate(() =>
      [...document.querySelectorAll("input:not([type=hidden]), select")].filter((field) => !field.labels.length).map((f) => f.id));
    assert.deepEqual(unnamed, [], path);
  }
  await open("/system");
  await page.keyboard.press("Tab");
  assert.equal(await page.evaluate(() => document.activeElement.textContent), "To the content");
  for (let i = 0; i < 40 && (await page.evaluate(() => document.activeElement.id)) !== "zep_DeviceName"; ++i) {
    await page.keyboard.press("Tab");
  }
  assert.equal(await page.evaluate(() => document.activeElement.id), "zep_DeviceName");
  assert.notEqual(await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle), "none");
});

test("a changed wireless name is saved, survives a reload, and the scripts run", async () => {
  await open("/wireless");
  await page.locator("#zep_Wl2_WirelessName").fill(`Hedge "<i>" & Co`);
  await save(radioForm());
  assert.equal(await saved(), "Saved. The device needs about 20 seconds until all of it takes effect.");
  await page.reload();
  assert.equal(await page.locator("#zep_Wl2_WirelessName").inputValue(), `Hedge "<i>" & Co`);
  assert.equal(node("/lan/wireless2.4:1/wirelessname"), `Hedge "<i>" & Co`);
  assert.match(journal(), /^wlan_resync\.sh: setting up ra0$/m);
  assert.doesNotMatch(journal(), /^(uplink|wlan5g_resync|device_resync)\.sh/m);
});

test("saving without a change writes nothing and runs nothing", async () => {
  const before = journal();
  await open("/wireless");
  await save(radioForm());
  assert.equal(await saved(), "Nothing was changed.");
  assert.equal(journal(), before);
});

test("a refused value is told at its field in words, and the others keep what was typed", async () => {
  await open("/wireless");
  await page.locator("#zep_Wl2_WirelessName").fill("Bär");
  await page.locator("#zep_Wl2_EncryptionKey").fill("a-new-key-of-mine");
  await page.locator("#zep_Wl2_Channel").selectOption("11");
  await save(radioForm());
  assert.equal(await page.locator("#zep_Wl2_WirelessName-fault").innerText(),
    "A character is not allowed here: 1 to 32 characters, no accents.");
  assert.equal(await page.locator("#zep_Wl2_WirelessName").inputValue(), "Bär");
  assert.equal(await page.locator("#zep_Wl2_WirelessName").getAttribute("aria-invalid"), "true");
  assert.equal(await page.locator("#zep_Wl2_EncryptionKey").inputValue(), "a-new-key-of-mine");
  assert.equal(await page.locator("#zep_Wl2_Channel").inputValue(), "11");
  assert.equal(await page.evaluate(() => document.activeElement.id), "zep_Wl2_WirelessName");
  assert.equal(node("/lan/wireless2.4:1/channel"), "6");
  await shoot("refused");
});

test("a value that does not fit the others is told at its field too", async () => {
  await open("/wireless");
  await page.locator("#zep_Wl2_EncryptionKey").fill("short");
  await save(radioForm());
  assert.equal(await page.locator("#zep_Wl2_EncryptionKey-fault").innerText(),
    "This key does not fit the encryption: WPA takes 8 to 63 characters, WEP 5 or 13.");
  assert.equal(node("/lan/wireless2.4:1/encryptionkey"), "hedgerow-2400");
});

test("a key is masked, and not in the page, until it is asked for", async () => {
  await open("/wireless");
  assert.ok(!(await page.content()).includes("hedgerow-2400"));
  const key = page.locator("#zep_Wl2_EncryptionKey");
  assert.equal(await key.getAttribute("type"), "password");
  const button = page.locator("button.show[data-for=zep_Wl2_EncryptionKey]");
  await button.click();
  await page.waitForFunction(() => document.getElementById("zep_Wl2_EncryptionKey").type === "text");
  assert.equal(await key.inputValue(), "hedgerow-2400");
  await button.click();
  assert.equal(await key.getAttribute("type"), "password");
});

test("an access rule is added, turned off and removed", async () => {
  const rule = "/lan/wireless2.4:1/accesscontrol/acrule:3";
  const item = () => accessCard().getByRole("listitem").filter({ hasText: "02:00:5e:00:53:01" });
  await open("/wireless");
  assert.equal(await accessCard().getByRole("listitem").count(), 2);
  await page.locator("#mac-Wl2").fill("02:00:5e:00:53:01");
  await accessCard().getByRole("button", { name: "Add the rule" }).click();
  await saved();
  await page.reload();
  assert.equal(await item().count(), 1);
  assert.equal(node(rule + "/mac"), "02:00:5e:00:53:01");
  assert.equal(node(rule + "/active"), "1");
  await item().getByRole("button", { name: "Turn off" }).click();
  await item().locator(".state", { hasText: "off" }).waitFor();
  assert.equal(node(rule + "/active"), "0");
  await item().getByRole("button", { name: "Remove" }).click();
  await page.waitForFunction(() => !document.body.textContent.includes("02:00:5e:00:53:01"));
  assert.equal(nodeExists(rule + "/mac"), false);
  assert.equal(node("/lan/wireless2.4:1/accesscontrol/acrule:1/mac"), "02:a1:b2:c3:d4:e5");
  assert.equal(node("/lan/wireless2.4:1/accesscontrol/acrule:1/active"), "1");
  assert.equal(node("/lan/wireless2.4:1/accesscontrol/acrule:2/active"), "0");
});

test("what is no address is refused as an access rule", async () => {
  await open("/wireless");
  await page.locator("#mac-Wl2").fill("my phone");
  await accessCard().getByRole("button", { name: "Add the rule" }).click();
  assert.equal(await page.locator("#mac-Wl2-fault").innerText(), "This must be six pairs of hex digits with colons between.");
  assert.equal(await page.locator("#mac-Wl2").inputValue(), "my phone");
  assert.equal(await accessCard().getByRole("listitem").count(), 2);
});

test("the uplink page shows the fields that the connection takes", async () => {
  await open("/uplink");
  assert.equal(await page.getByLabel("User name").isVisible(), false);
  await page.getByLabel("Connection", { exact: true }).selectOption("PPPoE");
  await page.getByLabel("User name").fill("user@line.example");
  await page.locator("#zep_Upl_LoginPassword").fill("tea&biscuits");
  await save(page.locator("main"));
  await saved();
  assert.equal(node("/uplink/conntype"), "PPPoE");
  assert.equal(node("/uplink/loginpassword"), "tea&biscuits");
  await shoot("uplink-pppoe");
});

test("a box of web safety is unticked", async () => {
  await open("/safety");
  await page.getByLabel("Check web addresses").uncheck();
  await save(page.locator("main"));
  await saved();
  assert.equal(node("/safetywdn/urldetectenbl"), "0");
  assert.equal(await page.getByLabel("Check web addresses").isChecked(), false);
});

test("pages can be read and used with scripts off", async () => {
  const session = await context.newCDPSession(page);
  await session.send("Emulation.setScriptExecutionDisabled", { value: true });
  await open("/uplink");
  assert.equal(await page.locator("#zep_Upl_IP").isVisible(), true);
  assert.equal(await page.locator("button.show").first().isVisible(), false);
  await open("/system");
  await page.locator("#zep_DeviceName").fill("No Scripts");
  await save(page.locator("main"));
  await saved();
  assert.equal(node("/sys/friendlyname"), "No Scripts");
  await session.send("Emulation.setScriptExecutionDisabled", { value: false });
});

test("after logging out, pages ask for the password again", async () => {
  await open("/");
  await page.getByRole("button", { name: "Log out" }).click();
  await page.getByLabel("Device password").waitFor();
  await open("/system");
  assert.equal(pathNow(), "/login");
});

test("nothing was fetched from elsewhere, and no page complained", () => {
  assert.deepEqual(sent.filter((request) => !request.startsWith(base + "/")), []);
  assert.deepEqual(complaints, []);
});
