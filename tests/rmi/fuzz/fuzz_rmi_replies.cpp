// SPDX-License-Identifier: Apache-2.0
// Replies as bytes from the network: whatever comes, the client goes on and gets the reply of its next call.
#include "client_stage.h"
#include "input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static fuzz::ClientStage& stage = *new fuzz::ClientStage; // its threads run until the process ends
    if (fuzz::Input::is_long_enough(size))
        stage.play(fuzz::Input(data, size));
    return 0;
}
