import json, sys, urllib.request

host, method, params, beginning = sys.argv[1:5]


def open_url(path, body=None):
    headers = {"Content-Type": "application/json"}
    return urllib.request.urlopen(urllib.request.Request(host + path, body, headers), timeout=30)


events = open_url("/events")  # first, so that the line cannot come before we listen
call = {"jsonrpc": "2.0", "id": 1, "method": method, "params": json.loads(params)}
print(json.load(open_url("/", json.dumps(call).encode())))
data = (json.loads(line[6:]) for line in events if line.startswith(b"data: "))
print(next(event["line"] for event in data if event.get("line", "").startswith(beginning)))
