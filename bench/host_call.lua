-- SPDX-License-Identifier: Apache-2.0
-- For wrk: posts one call over and over, and reports in one line what it measured.
wrk.method = "POST"
wrk.path = "/"
wrk.headers["Content-Type"] = "application/json"
wrk.body = '{"jsonrpc":"2.0","method":"nothing","params":{},"id":1}'
if os.getenv('CALL_PARAMS') then
    wrk.body = wrk.body:gsub('{}', os.getenv('CALL_PARAMS'))
end

function done(summary, latency, requests)
    local errors = summary.errors
    io.write(string.format("measured: %d requests, %d us, p50 %d us, p99 %d us, %d failed\n",
        summary.requests, summary.duration, latency:percentile(50), latency:percentile(99),
        errors.connect + errors.read + errors.write + errors.status + errors.timeout))
end
