// Makes the page: one HTML file with styles, script and licences in it.
//   node build.mjs OUT.html OUT.inc
// The second file is the page as C++ string literals.
// Run where package.json and node_modules are.

import { createHash } from 'node:crypto';
import { readFileSync, writeFileSync } from 'node:fs';
import { build } from 'esbuild';

const [out, literals] = process.argv.slice(2);
if (!out || !literals) throw new Error('node build.mjs OUT.html OUT.inc');

const common = { bundle: true, minify: true, write: false, legalComments: 'none', charset: 'ascii', logLevel: 'warning' };
const only = (result) => result.outputFiles[0].text.trim();
const script = only(await build({ ...common, entryPoints: ['src/main.ts'], format: 'iife', target: ['es2022'] }));
const style = only(await build({ ...common, entryPoints: ['style.css'] }));

// Both end where their element ends, so neither may hold its end tag.
for (const [name, text] of [['script', script], ['style', style]]) {
  if (new RegExp(`</${name}`, 'i').test(text)) throw new Error(`the ${name} holds its own end tag`);
}

const escaped = (text) => text.replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;');
const { dependencies } = JSON.parse(readFileSync('package.json', 'utf8'));
const licences = Object.entries(dependencies)
  .map(([name, version]) => `${name} ${version}\n\n${readFileSync(`node_modules/${name}/LICENSE`, 'utf8').trim()}\n`)
  .join('\n\n');

// The policy lets this very script run and no other.
const hash = `sha256-${createHash('sha256').update(script).digest('base64')}`;
const parts = { SCRIPT_HASH: hash, STYLE: style, SCRIPT: script, LICENCES: escaped(licences) };
const page = readFileSync('index.html', 'utf8').replace(/@(SCRIPT_HASH|STYLE|SCRIPT|LICENCES)@/g, (_, name) => parts[name]);
if (page.split('@QAL_REPORT_DATA@').length !== 2) throw new Error('the mark of the data is not in the page once');
writeFileSync(out, page);

// In pieces that every compiler takes; none holds the delimiter.
if (page.includes(')qal_page"')) throw new Error('the delimiter of the literals is in the page');
const kPiece = 8000;
const pieces = [];
for (let i = 0; i < page.length; i += kPiece) pieces.push(`R"qal_page(${page.slice(i, i + kPiece)})qal_page"`);
writeFileSync(literals, pieces.join('\n') + '\n');
console.log(`${out}: ${Buffer.byteLength(page)} bytes`);
