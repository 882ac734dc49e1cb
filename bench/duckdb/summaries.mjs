// SPDX-License-Identifier: Apache-2.0
// The peer of bench/summaries_bench.cpp, in one thread: node summaries.mjs. A million sales of 100 000 customers, made here.
// Needs the package @duckdb/node-api beside it, which nothing else does.
import { DuckDBInstance } from "@duckdb/node-api";

const instance = await DuckDBInstance.create(":memory:", { threads: "1" });
const connection = await instance.connect();
await connection.run(`CREATE TABLE s AS SELECT
  'Product ' || (random() * 8)::INT % 8 AS product, 'Region ' || (random() * 8)::INT % 8 AS region,
  'Customer ' || (random() * 100000)::INT % 100000 AS customer,
  DATE '2024-01-01' + (random() * 365)::INT AS day, (random() * 1000)::DECIMAL(10, 2) AS price
  FROM range(1000000)`);
await connection.run("CREATE TABLE own AS SELECT * REPLACE ('Customer ' || (rowid * 7919) % 1000000 AS customer) FROM s");

async function median(name, sql) {
  const times = [];
  for (let round = 0; round < 7; ++round) {
    const begin = process.hrtime.bigint();
    await connection.run(`CREATE OR REPLACE TABLE answer AS ${sql}`);
    times.push(Number(process.hrtime.bigint() - begin) / 1e6);
  }
  times.sort((a, b) => a - b);
  console.log(`${name}/duckdb ${times[3].toFixed(1)} ms`);
}

await median("group_customer", "SELECT customer, count(*), sum(price) FROM s GROUP BY customer");
await median("group_product_region", "SELECT product, region, sum(price) FROM s GROUP BY product, region");
await median("group_region_customer", "SELECT region, customer, sum(price) FROM s GROUP BY region, customer");
await median("group_min_max_average", "SELECT customer, min(day), max(price), avg(price) FROM s GROUP BY customer");
await median("count_distinct", "SELECT product, count(DISTINCT customer) FROM s GROUP BY product");
await median("distinct", "SELECT DISTINCT customer FROM s");
await median("total", "SELECT sum(price) FROM s");
await median("running_total",
  "SELECT sum(price) OVER (PARTITION BY region ORDER BY day ROWS UNBOUNDED PRECEDING) FROM s");
await median("rank", "SELECT rank() OVER (PARTITION BY product ORDER BY price DESC) FROM s");
await median("group_own_customer", "SELECT customer, count(*), sum(price) FROM own GROUP BY customer");
await median("sort_customer", "SELECT * FROM s ORDER BY customer");
await median("sort_customer_price", "SELECT * FROM s ORDER BY customer, price");
await median("sort_product_day", "SELECT * FROM s ORDER BY product, day");
await median("sort_price", "SELECT * FROM s ORDER BY price");
await connection.run("CREATE TABLE sorted AS SELECT * FROM s ORDER BY customer");
await median("sort_sorted", "SELECT * FROM sorted ORDER BY customer");
