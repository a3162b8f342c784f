// The hero page drawn with sharp, as a sharp user would write it: SVG for the
// shapes and the headline, sharp's Gaussian blur for the shadow, one composite.
//
//   node compose.js GEOMETRY.json CAPTURE.png OUT.png
//
// GEOMETRY.json is written by scripts/bench-peers.sh, so this page and the
// ImageMagick one share every number. sharp comes from NODE_PATH.
'use strict';

const fs = require('fs');
const sharp = require('sharp');

const [geometryPath, capturePath, outPath] = process.argv.slice(2);
if (!outPath) {
  console.error('usage: node compose.js GEOMETRY.json CAPTURE OUT');
  process.exit(2);
}
const g = JSON.parse(fs.readFileSync(geometryPath, 'utf8'));
if (process.env.BENCH_THREADS) sharp.concurrency(Number(process.env.BENCH_THREADS));

const svg = (width, height, body) => Buffer.from(
  `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}">${body}</svg>`);
const roundRect = (x, y, w, h, r, fill) =>
  `<rect x="${x}" y="${y}" width="${w}" height="${h}" rx="${r}" ry="${r}" fill="${fill}"/>`;
const escape = (text) => text.replace(/&/g, '&amp;').replace(/</g, '&lt;');

async function main() {
  const { width: W, height: H } = g.page;

  // Shadow: the body's shape on a transparent page-sized layer, moved down and
  // blurred as a whole, like plakard's scratch canvas.
  const shadow = await sharp(svg(W, H,
      roundRect(g.shadow.x, g.shadow.y, g.phone.w, g.phone.h, g.phone.radius,
                `rgba(0,0,0,${g.shadow.alpha / 255})`)))
    .blur(g.shadow.sigma)
    .raw()
    .toBuffer({ resolveWithObject: true });

  const body = svg(g.phone.w, g.phone.h,
    roundRect(0, 0, g.phone.w, g.phone.h, g.phone.radius, g.phone.colour));

  // The capture stretched to the screen and clipped to its rounded corners.
  const screenMask = svg(g.screen.w, g.screen.h,
    roundRect(0, 0, g.screen.w, g.screen.h, g.screen.radius, '#fff'));
  const screen = await sharp(capturePath)
    .ensureAlpha()
    .resize(g.screen.w, g.screen.h, { fit: 'fill' })
    .composite([{ input: screenMask, blend: 'dest-in' }])
    .raw()
    .toBuffer({ resolveWithObject: true });

  // Pill and headline share one layer from the page's top down to the pill.
  const lines = g.lines.map((line) =>
    `<text x="${W / 2}" y="${line.baseline}" font-family="${g.font.family}" font-weight="${g.font.weight}"` +
    ` font-size="${line.size}" fill="${g.foreground}" text-anchor="middle">${escape(line.text)}</text>`).join('');
  const topLayerHeight = Math.ceil(g.pill.y + g.pill.h) + 2;
  const topLayer = svg(W, topLayerHeight,
    roundRect(g.pill.x, g.pill.y, g.pill.w, g.pill.h, g.pill.h / 2, '#000') + lines);

  const raw = (image) => ({ input: image.data, raw: image.info });
  await sharp({ create: { width: W, height: H, channels: 4, background: g.background } })
    .composite([
      { ...raw(shadow), left: 0, top: 0 },
      { input: body, left: g.phone.x, top: g.phone.y },
      { ...raw(screen), left: g.screen.x, top: g.screen.y },
      { input: topLayer, left: 0, top: 0 },
    ])
    .removeAlpha()
    .png()
    .toFile(outPath);
}

main().catch((error) => {
  console.error(`compose.js: ${error.message}`);
  process.exit(1);
});
