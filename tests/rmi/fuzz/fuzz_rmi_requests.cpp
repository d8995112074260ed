// SPDX-License-Identifier: Apache-2.0
// Requests as bytes from the network: whatever comes, the server goes on and serves the next call.
#include "input.h"
#include "server_stage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static fuzz::ServerStage& stage = *new fuzz::ServerStage; // its threads run until the process ends
    if (fuzz::Input::is_long_enough(size))
        stage.play(fuzz::Input(data, size));
    return 0;
}
