#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""JSON-RPC clients that others have written call a real zorbd: calls, batches, notifications, errors, odd ids.

Those of npm are fetched into the build folder; a client whose package manager, library or package is not there is
skipped, and said so.

Usage: foreign_clients_test.py ZORBD PLUGIN BUILD_FOLDER"""

import contextlib
import fcntl
import importlib.util
import json
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

ZORBD, PLUGIN, BUILD = sys.argv[1:4]
HERE = pathlib.Path(__file__).resolve().parent
NPM_PACKAGES = ("jayson@4.1.3", "json-rpc-2.0@1.7.0", "@open-rpc/client-js@1.8.1", "isomorphic-fetch@3.0.0")
DEADLINE = 120


def npm_folder():
    folder = pathlib.Path(BUILD).resolve() / "npm" / "foreign"
    folder.mkdir(parents=True, exist_ok=True)
    with open(folder.parent / "foreign.lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not (folder / "complete").exists():
            subprocess.run(["npm", "install", "--silent", "--no-audit", "--no-fund", "--prefix", folder, *NPM_PACKAGES],
                           check=True, timeout=DEADLINE)
            (folder / "complete").touch()
    return folder


class ForeignClient(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.zorbd = subprocess.Popen([ZORBD, "--plugin", PLUGIN, "--listen", "127.0.0.1:0"], stderr=subprocess.PIPE,
                                     stdout=subprocess.DEVNULL, text=True)
        cls.port = bound = None
        for line in cls.zorbd.stderr:
            found = re.search(r"ready on http://127\.0\.0\.1:(\d+)", line)
            cls.port = int(found.group(1)) if found else cls.port
            bound = bound or "is bound" in line
            if cls.port and bound:
                break
        cls.url = f"http://127.0.0.1:{cls.port}/"

    @classmethod
    def tearDownClass(cls):
        cls.zorbd.terminate()
        cls.zorbd.stderr.close()
        cls.zorbd.wait()

    def check(self, *command, **options):
        done = subprocess.run(command, capture_output=True, text=True, check=False, timeout=DEADLINE, **options)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        return done.stdout

    @unittest.skipUnless(shutil.which("npm") and shutil.which("node"), "npm is not installed")
    def test_jayson_and_json_rpc_2_0_and_open_rpc_of_npm(self):
        self.check("node", HERE / "clients.mjs", str(self.port), cwd=npm_folder())

    @unittest.skipUnless(importlib.util.find_spec("jsonrpclib"), "python3-jsonrpclib-pelix is not installed")
    def test_jsonrpclib_pelix(self):
        import jsonrpclib
        server = jsonrpclib.ServerProxy(self.url)
        self.assertEqual(server.seven(), 7)
        self.assertEqual(server.echo("a", 2), ["a", 2])
        with contextlib.suppress(jsonrpclib.jsonrpc.TransportError):  # 0.4.2 takes 204 for a failure
            jsonrpclib.ServerProxy(self.url)._notify.seven()
        with self.assertRaises(jsonrpclib.ProtocolError) as raised:
            server.nowhere()
        self.assertEqual(raised.exception.args[0][0], -32601)
        batch = jsonrpclib.MultiCall(server)
        batch.seven()
        batch.echo("b")
        self.assertEqual(list(batch()), [7, ["b"]])
        with contextlib.suppress(AttributeError):
            server("close")()

    @unittest.skipUnless(pathlib.Path("/usr/include/jsonrpccpp/client.h").exists(), "libjsonrpccpp-dev is not installed")
    def test_libjson_rpc_cpp(self):
        program = pathlib.Path(BUILD).resolve() / "bin" / "jsonrpccpp_client"
        source = HERE / "jsonrpccpp_client.cpp"
        if not program.exists() or program.stat().st_mtime < source.stat().st_mtime:
            self.check("c++", "-std=c++14", "-I/usr/include/jsoncpp", "-o", program, source, "-ljsonrpccpp-client",
                       "-ljsonrpccpp-common", "-ljsoncpp", "-lcurl")
        self.check(program, self.url)

    def test_curl(self):
        def post(text):
            return self.check("curl", "--silent", "--show-error", "--json", text, self.url)

        for identity in ('"a"', '""', "-1", "1.50", "null", "18446744073709551615", r'"\u00e4\n"'):
            answer = json.loads(post(f'{{"jsonrpc":"2.0","method":"seven","id":{identity}}}'))
            self.assertEqual((answer["result"], answer["id"]), (7, json.loads(identity)))
        self.assertEqual(post('{"jsonrpc":"2.0","method":"seven"}'), "")
        self.assertEqual(json.loads(post("nonsense"))["error"]["code"], -32700)
        self.assertEqual(json.loads(post("[]"))["error"]["code"], -32600)
        self.assertEqual(len(json.loads(post('[{"jsonrpc":"2.0","method":"seven","id":1},1]'))), 2)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
