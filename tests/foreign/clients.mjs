// SPDX-License-Identifier: Apache-2.0
// Calls zorbd with the JSON-RPC clients of npm. Usage: node clients.mjs PORT, in a folder with the packages.
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import path from 'node:path';

const require = createRequire(path.join(process.cwd(), 'package.json'));
const port = Number(process.argv[2]);
const url = `http://127.0.0.1:${port}/`;

async function withJayson() {
  const jayson = require('jayson/promise');
  const ids = ['text', 7, 'ä "quoted"', '0'];
  for (const id of ids) {
    const client = jayson.Client.http({ port, host: '127.0.0.1', generator: () => id });
    assert.deepEqual(await client.request('seven', {}), { jsonrpc: '2.0', result: 7, id });
  }
  const client = jayson.Client.http({ port, host: '127.0.0.1' });
  assert.deepEqual((await client.request('echo', [1, 'zwei', null])).result, [1, 'zwei', null]);
  assert.equal((await client.request('nowhere', {})).error.code, -32601);
  const batch = [client.request('seven', {}, undefined, false), client.request('refuse', {}, undefined, false)];
  const answers = await client.request(batch);
  assert.equal(answers.find((one) => one.result !== undefined).result, 7);
  assert.equal(answers.find((one) => one.error !== undefined).error.code, -32602);
  assert.equal(await client.request('seven', {}, null), undefined); // a notification
}

async function withJsonRpc2() {
  const { JSONRPCClient } = require('json-rpc-2.0');
  const client = new JSONRPCClient(async (request) => {
    const response = await fetch(url, {
      method: 'POST', headers: { 'content-type': 'application/json' }, body: JSON.stringify(request),
    });
    if (response.status === 200)
      client.receive(await response.json());
    else
      assert.equal(response.status, 204);
  });
  assert.equal(await client.request('seven', {}), 7);
  assert.deepEqual(await client.request('echo', { a: [1.5, true] }), { a: [1.5, true] });
  await assert.rejects(client.request('refuse', {}), { code: -32602 });
  client.notify('seven', {});
  const many = await client.requestAdvanced([
    { jsonrpc: '2.0', id: 1, method: 'seven' }, { jsonrpc: '2.0', id: 2, method: 'nowhere' },
  ]);
  assert.deepEqual(many.map((one) => one.result ?? one.error.code), [7, -32601]);
}

async function withOpenRpc() {
  const { Client, HTTPTransport, RequestManager } = require('@open-rpc/client-js');
  const client = new Client(new RequestManager([new HTTPTransport(url)]));
  assert.equal(await client.request({ method: 'seven', params: {} }), 7);
  await assert.rejects(client.request({ method: 'nowhere', params: [] }), { code: -32601 });
  client.startBatch();
  const both = [client.request({ method: 'seven', params: {} }), client.request({ method: 'echo', params: ['b'] })];
  client.stopBatch();
  assert.deepEqual(await Promise.all(both), [7, ['b']]);
  client.close();
}

for (const client of [withJayson, withJsonRpc2, withOpenRpc]) {
  await client();
  console.log(`${client.name}: ok`);
}
process.exit(0);
