// SPDX-License-Identifier: Apache-2.0
// The peer of bench/joins_bench.cpp, in one thread: node joins.mjs. Needs the package @duckdb/node-api beside it, which
// nothing else does.
import { DuckDBInstance } from "@duckdb/node-api";

const instance = await DuckDBInstance.create(":memory:", { threads: "1" });
const connection = await instance.connect();

async function median(name, sql) {
  const times = [];
  for (let round = 0; round < 7; ++round) {
    await connection.run("DROP TABLE IF EXISTS made");
    const begin = process.hrtime.bigint();
    await connection.run(`CREATE TABLE made AS ${sql}`);
    times.push(Number(process.hrtime.bigint() - begin) / 1e6);
  }
  times.sort((a, b) => a - b);
  console.log(`${name}/duckdb ${times[3].toFixed(1)} ms`);
}

await connection.run("SELECT setseed(0.5)");
await connection.run(`CREATE TABLE s AS SELECT 'Customer ' || n AS customer, n AS number, p AS price FROM (SELECT
  (random() * 111111)::INTEGER AS n, (random() * 1000)::DECIMAL(9, 2) AS p FROM range(1000000))`);
await connection.run(`CREATE TABLE c AS SELECT 'Customer ' || n AS code, n AS id,
  'City ' || (random() * 999)::INTEGER AS city FROM (SELECT (range * 7919 % 100000)::INTEGER AS n FROM range(100000))`);

await median("join_text", "SELECT s.*, c.city FROM s JOIN c ON s.customer = c.code");
await median("join_number", "SELECT s.*, c.city FROM s JOIN c ON s.number = c.id");
await median("join_left", "SELECT s.*, c.city FROM s LEFT JOIN c ON s.customer = c.code");
await median("join_two", "SELECT s.*, c.city FROM s JOIN c ON s.customer = c.code AND s.number = c.id");
await median("join_anti", "SELECT * FROM s ANTI JOIN c ON s.customer = c.code");
await median("distinct_customer", "SELECT DISTINCT customer FROM s");
await median("union_all", "SELECT * FROM s UNION ALL SELECT * FROM s");
await median("except", "SELECT * FROM s EXCEPT SELECT * FROM s");
