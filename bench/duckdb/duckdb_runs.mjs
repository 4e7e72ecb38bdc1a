// The DuckDB side of the run benchmark: the tool a user might pick instead,
// on its own columnar table holding the same records.
//
//   node duckdb_runs.mjs load DB CSV
//     makes DB (a DuckDB file) with table `records` from the CSV the sqlite3
//     command line wrote of the data file (header line, same column names);
//   node duckdb_runs.mjs run DB OUT SQL
//     cold: opens DB, runs SQL and writes its result as CSV to OUT, timed
//     from before the open to after the write (node's own start is not
//     counted); warm: the same query again on the open connection.
//     Prints one line: "cold SECONDS warm SECONDS".
import { DuckDBInstance } from '@duckdb/node-api';

const seconds = (start) => Number(process.hrtime.bigint() - start) / 1e9;

async function Load(db, csv) {
  const instance = await DuckDBInstance.create(db);
  const connection = await instance.connect();
  await connection.run('DROP TABLE IF EXISTS records');
  await connection.run(
    `CREATE TABLE records AS SELECT * FROM read_csv('${csv}', header = true,
       types = {'v1': 'VARCHAR', 'v2': 'VARCHAR', 'v13': 'VARCHAR',
                'v14': 'VARCHAR'})`);
  await connection.run('CHECKPOINT');
  connection.closeSync();
}

async function Run(db, out, sql) {
  const query = sql.replace(/;\s*$/, '');
  const copy = `COPY (${query}) TO '${out}' (HEADER, DELIMITER ',')`;
  let start = process.hrtime.bigint();
  const instance = await DuckDBInstance.create(db, { access_mode: 'READ_ONLY' });
  const connection = await instance.connect();
  await connection.run(copy);
  const cold = seconds(start);
  start = process.hrtime.bigint();
  await connection.run(copy);
  const warm = seconds(start);
  connection.closeSync();
  console.log(`cold ${cold} warm ${warm}`);
}

const [verb, db, a, b] = process.argv.slice(2);
if (verb === 'load') await Load(db, a);
else if (verb === 'run') await Run(db, a, b);
else {
  console.error('usage: duckdb_runs.mjs load DB CSV | run DB OUT SQL');
  process.exit(2);
}
