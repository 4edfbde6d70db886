// What pages do beyond plain forms: showing secrets, and hiding what does not apply. All of it works without, too.
"use strict";

async function storedSecret(name) {
  const answer = await fetch("/zep/var?name=" + encodeURIComponent(name));
  return answer.ok ? (await answer.json()).value : "";
}

// A secret that was shown and left alone is posted as it is, which changes nothing.
async function toggle(button) {
  const field = document.getElementById(button.dataset.for);
  const hidden = field.type === "password";
  if (hidden && field.value === "") field.value = await storedSecret(field.name);
  field.type = hidden ? "text" : "password";
  button.textContent = hidden ? "Hide" : "Show";
  button.setAttribute("aria-pressed", String(hidden));
}

for (const button of document.querySelectorAll("button.show")) {
  button.hidden = false;
  button.addEventListener("click", () => toggle(button));
}

// data-when="FIELD=one,two": a group of fields that matters only for these values of another one.
function applyCondition(group) {
  const [name, values] = group.dataset.when.split("=");
  const applies = values.split(",").includes(document.getElementById(name).value);
  group.hidden = !applies && !group.querySelector(".wrong");
}

for (const group of document.querySelectorAll("[data-when]")) {
  const name = group.dataset.when.split("=")[0];
  document.getElementById(name).addEventListener("change", () => applyCondition(group));
  applyCondition(group);
}

document.querySelector("[aria-invalid]")?.focus();
