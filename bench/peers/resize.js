// The store-size resize with sharp: cover the target, keep the top, centre
// horizontally, write an opaque PNG.
//
//   node resize.js IN OUT WIDTH HEIGHT
'use strict';

const sharp = require('sharp');

const [inPath, outPath, width, height] = process.argv.slice(2);
if (!height) {
  console.error('usage: node resize.js IN OUT WIDTH HEIGHT');
  process.exit(2);
}
if (process.env.BENCH_THREADS) sharp.concurrency(Number(process.env.BENCH_THREADS));

sharp(inPath)
  .resize(Number(width), Number(height), { fit: 'cover', position: 'top' })
  .removeAlpha()
  .png()
  .toFile(outPath)
  .catch((error) => {
    console.error(`resize.js: ${error.message}`);
    process.exit(1);
  });
