// SPDX-License-Identifier: Apache-2.0
// The peer of bench/exchange_bench.cpp, in one thread: node csv.mjs FILE, where FILE is what CORE_BENCH_CSV named.
// Needs the package @duckdb/node-api beside it, which nothing else does.
import { DuckDBInstance } from "@duckdb/node-api";

const [file] = process.argv.slice(2);
const instance = await DuckDBInstance.create(":memory:", { threads: "1" });
const connection = await instance.connect();
const quoted = file.replaceAll("'", "''");

async function median(name, prepare, sql) {
  const times = [];
  for (let round = 0; round < 7; ++round) {
    await connection.run(prepare);
    const begin = process.hrtime.bigint();
    await connection.run(sql);
    times.push(Number(process.hrtime.bigint() - begin) / 1e6);
  }
  times.sort((a, b) => a - b);
  console.log(`${name}/duckdb ${times[3].toFixed(1)} ms`);
}

await median("csv_in", "DROP TABLE IF EXISTS sales", `CREATE TABLE sales AS SELECT * FROM read_csv('${quoted}')`);
await median("csv_out", "SELECT 1", `COPY sales TO '${quoted}.out' (HEADER)`);
