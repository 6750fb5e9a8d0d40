// What the extension does now shows every two seconds, as long as somebody looks.
let told = document.getElementById("process").innerHTML;
sayFigures();

setInterval(async () => {
  if (document.hidden) return;
  const answer = await fetch(location.href).catch(() => null);
  if (!answer?.ok) return;
  const page = document.createElement("template");
  page.innerHTML = await answer.text();
  const fresh = page.content.getElementById("process");
  if (fresh.innerHTML === told || getSelection().toString()) return;
  told = fresh.innerHTML;
  document.getElementById("process").replaceWith(fresh);
  sayFigures();
}, 2000);
