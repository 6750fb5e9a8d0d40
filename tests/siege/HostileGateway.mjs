// An HTTPS gateway that answers well or badly, as its seed says, and remembers which figures it
// really gave away: what a card may show as live.
import { once } from "node:events";
import { readFileSync } from "node:fs";
import { createServer } from "node:https";
import { gzipSync } from "node:zlib";

// No good answer holds it.
const lie = 66_666_666;

const figures = (n) => ({ salesMonth: n % 9000, unpaidInvoices: n, pendingEstimates: n });
const rows = (n) => ({ records: [{ no: String(n), clientName: `Client ${n}`, total: n }] });
const wrapped = (data) => JSON.stringify({ code: 200, data: JSON.stringify(data) });

const bomb = gzipSync(Buffer.alloc(64 * 1024 * 1024, "["));

// Each breaks the answer to one request; none of them may ever be shown as live.
const damages = {
  nothing: (response) => response.destroy(),
  cutShort: (response, good) => {
    response.writeHead(200, { "content-length": good.length });
    response.write(good.slice(0, good.length / 2), () => response.destroy());
  },
  notJson: (response) => response.end("<html>no JSON</html>"),
  emptyBody: (response) => response.end(""),
  noText: (response) => response.end(JSON.stringify({ data: figures(lie) })),
  innerNotJson: (response) => response.end(JSON.stringify({ data: `{"salesMonth": ${lie}` })),
  otherMembers: (response) => response.end(wrapped({ salesMonth: lie, records: lie })),
  textFigures: (response) => response.end(wrapped({ salesMonth: String(lie), records: String(lie) })),
  notUtf8: (response) => response.end(Buffer.from([0x7b, 0x22, 0xff, 0xfe, 0x22, 0x3a, 0x31, 0x7d])),
  deep: (response) => response.end("[".repeat(100_000)),
  bomb: (response) => response.writeHead(200, { "content-encoding": "gzip" }).end(bomb),
  garbage: (response) => response.socket.end("HTTP/9.9 what\r\n\r\n\0\0\0"),
  endlessHeaders: (response) => response.socket.end(`HTTP/1.1 200 OK\r\n${"x: y\r\n".repeat(100_000)}`),
  elsewhere: (response) => response.writeHead(302, { location: "https://localhost:1/" }).end(),
};
const damageNames = Object.keys(damages);

export class HostileGateway {
  damagedShare = 0;
  goodAnswers = 0;
  damagedAnswers = 0;
  last = 1000; // number of the latest good answer
  now = Date.now;
  given = new Map(); // what cards write for the good answers, and when each was given

  constructor(folder, random) {
    this.random = random;
    this.server = createServer(
      { key: readFileSync(`${folder}/key.pem`), cert: readFileSync(`${folder}/certificate.pem`) },
      (request, response) => {
        request.resume().on("end", () => this.answer(request.url, response));
      },
    );
    this.server.on("tlsClientError", () => {});
  }

  answer(url, response) {
    response.on("error", () => {});
    const good = wrapped((url.endsWith("/getDataMap") ? figures : rows)(this.last + 1));
    if (this.random() < this.damagedShare) {
      ++this.damagedAnswers;
      damages[damageNames[Math.floor(this.random() * damageNames.length)]](response, good);
      return;
    }
    ++this.goodAnswers;
    const n = ++this.last;
    for (const text of [`$${(n % 9000).toLocaleString("en")}`, `${n}`, `Client ${n}`]) this.given.set(text, this.now());
    response.end(good);
  }

  // Whether one of a card's texts is a figure that was really given away since then.
  gave(texts, since = 0) {
    return texts.some((text) => this.given.get(text) >= since);
  }

  async listen(port) {
    this.server.listen(port, "127.0.0.1");
    await once(this.server, "listening");
  }

  close() {
    this.server.closeAllConnections();
    return new Promise((resolve) => this.server.close(resolve));
  }
}
