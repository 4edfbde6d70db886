// Logging in: the key is made here from the password, and only the key is sent.
"use strict";

const shifts = [7, 12, 17, 22, 5, 9, 14, 20, 4, 11, 16, 23, 6, 10, 15, 21];
const sines = Array.from({ length: 64 }, (_, i) => Math.floor(Math.abs(Math.sin(i + 1)) * 2 ** 32));

function rotate(value, count) {
  return (value << count) | (value >>> (32 - count));
}

// The mixing function of a step, and the word of the block that it takes.
function mix(step, b, c, d) {
  if (step < 16) return [(b & c) | (~b & d), step];
  if (step < 32) return [(d & b) | (~d & c), (5 * step + 1) % 16];
  if (step < 48) return [b ^ c ^ d, (3 * step + 5) % 16];
  return [c ^ (b | ~d), (7 * step) % 16];
}

function digestBlock(state, words) {
  let [a, b, c, d] = state;
  for (let step = 0; step < 64; ++step) {
    const [mixed, word] = mix(step, b, c, d);
    const sum = (a + mixed + sines[step] + words[word]) | 0;
    const shift = shifts[4 * (step >> 4) + (step & 3)];
    [a, b, c, d] = [d, (b + rotate(sum, shift)) | 0, b, c];
  }
  return [(state[0] + a) | 0, (state[1] + b) | 0, (state[2] + c) | 0, (state[3] + d) | 0];
}

// RFC 1321. The message is shorter than 2^29 bytes.
function md5(bytes) {
  const padded = new DataView(new ArrayBuffer(((bytes.length + 8) >> 6) * 64 + 64));
  bytes.forEach((byte, i) => padded.setUint8(i, byte));
  padded.setUint8(bytes.length, 0x80);
  padded.setUint32(padded.byteLength - 8, bytes.length * 8, true);
  let state = [0x67452301, 0xefcdab89 | 0, 0x98badcfe | 0, 0x10325476];
  for (let block = 0; block < padded.byteLength; block += 64) {
    const words = Array.from({ length: 16 }, (_, i) => padded.getInt32(block + 4 * i, true));
    state = digestBlock(state, words);
  }
  const digest = new DataView(new ArrayBuffer(16));
  state.forEach((word, i) => digest.setInt32(4 * i, word, true));
  return Array.from({ length: 16 }, (_, i) => digest.getUint8(i).toString(16).padStart(2, "0")).join("");
}

// The device cuts the password at 63 bytes and the whole text at 127.
function accessKey(hello, password) {
  const encoder = new TextEncoder();
  const start = encoder.encode(Math.floor(hello.uptime / 20) + hello.client + "admin");
  const text = new Uint8Array([...start, ...encoder.encode(password).slice(0, 63)]);
  return md5(text.slice(0, 127));
}

async function logIn(password) {
  const hello = await (await fetch("/zep/hello")).json();
  const body = new URLSearchParams({ PendraKey: accessKey(hello, password) });
  const answer = await fetch("/zep/login", { method: "POST", body });
  if (answer.ok) return "";
  return answer.status === 401 ? "The password is wrong." : await answer.text();
}

const form = document.getElementById("login");
const password = document.getElementById("password");
const fault = document.getElementById("login-fault");

form.addEventListener("submit", async (event) => {
  event.preventDefault();
  fault.textContent = await logIn(password.value).catch(() => "The device does not answer. Try again.");
  if (fault.textContent === "") {
    location.assign("/");
  } else {
    password.select();
  }
});

const show = document.querySelector("button.show");
show.hidden = false;
show.addEventListener("click", () => {
  const hidden = password.type === "password";
  password.type = hidden ? "text" : "password";
  show.textContent = hidden ? "Hide" : "Show";
  show.setAttribute("aria-pressed", String(hidden));
});
