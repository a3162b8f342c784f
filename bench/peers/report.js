// Turns the benchmark's raw results into one Markdown table.
//
//   node report.js RESULTS_DIR
//
// RESULTS_DIR holds measures.tsv (job, tool, peak RSS in kB, output bytes or
// "-", minor page faults; one line per command that ran) and JOB.json, hyperfine's export for
// each job. The ratio is the tool's median over plakard's in the same job, so
// above 1 means plakard was faster. CPU is hyperfine's mean user plus system
// time: on a busy machine it moves far less than the wall time does, and for a
// tool with several threads it may exceed the wall time.
'use strict';

const fs = require('fs');
const path = require('path');

const dir = process.argv[2];
const measures = fs.readFileSync(path.join(dir, 'measures.tsv'), 'utf8')
  .split('\n').filter(Boolean).map((line) => {
    const [job, tool, rssKB, bytes, faults] = line.split('\t');
    return { job, tool, rssKB: Number(rssKB), bytes, faults: Number(faults) };
  });

const jobs = [...new Set(measures.map((m) => m.job))];
const rows = ['| job | tool | median ± σ | ratio vs plakard | CPU (user + sys) | peak RSS (MB) | minor faults | output bytes |',
              '| --- | --- | ---: | ---: | ---: | ---: | ---: | ---: |'];
for (const job of jobs) {
  const file = path.join(dir, `${job}.json`);
  const medians = new Map();
  if (fs.existsSync(file)) {
    for (const r of JSON.parse(fs.readFileSync(file, 'utf8')).results) medians.set(r.command, r);
  }
  const plakard = medians.get('plakard');
  for (const m of measures.filter((x) => x.job === job)) {
    const r = medians.get(m.tool);
    const median = r ? `${(r.median * 1000).toFixed(1)} ms ± ${(r.stddev * 1000).toFixed(1)}` : 'n/a';
    const ratio = r && plakard ? `${(r.median / plakard.median).toFixed(2)}×` : 'n/a';
    const cpu = r ? `${((r.user + r.system) * 1000).toFixed(1)} ms` : 'n/a';
    const rss = Number.isFinite(m.rssKB) ? (m.rssKB / 1024).toFixed(1) : 'n/a';
    const bytes = m.bytes === '-' ? '—' : Number(m.bytes).toLocaleString('en-US');
    const faults = Number.isFinite(m.faults) ? m.faults.toLocaleString('en-US') : 'n/a';
    rows.push(`| ${job} | ${m.tool} | ${median} | ${ratio} | ${cpu} | ${rss} | ${faults} | ${bytes} |`);
  }
}
process.stdout.write(rows.join('\n') + '\n');
