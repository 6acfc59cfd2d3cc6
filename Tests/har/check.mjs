// Checks a HAR file against the published HAR 1.2 schema: node check.mjs FILE
//
// The check ignores the cache block of each entry: it has every key, with null for unknown values, but the
// schema requires strings and numbers there.

import { readFile } from 'node:fs/promises'
import { createRequire } from 'node:module'

const require = createRequire(import.meta.url)
const { har: validate } = require('har-validator/lib/promise')

function fail(...lines) {
  lines.forEach((line) => console.error(line))
  process.exit(1)
}

const path = process.argv[2]
if (!path) fail('usage: node check.mjs FILE')

let archive
try {
  archive = JSON.parse(await readFile(path, 'utf8'))
} catch (error) {
  fail(`${path}: ${error.message}`)
}

const entries = archive?.log?.entries
if (!Array.isArray(entries)) fail(`${path}: there is no log.entries`)
for (const [index, entry] of entries.entries()) {
  if (typeof entry?.cache !== 'object' || entry.cache === null) fail(`${path}: entry ${index} has no cache block`)
  entry.cache = {}
}

try {
  await validate(archive)
} catch (error) {
  const problems = error.errors?.map(({ dataPath, message }) => `  ${dataPath || 'document'} ${message}`)
  fail(`${path}: not valid HAR 1.2`, ...(problems ?? [`  ${error.message}`]))
}
console.log(`${entries.length} entries valid`)
