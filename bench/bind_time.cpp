// SPDX-License-Identifier: Apache-2.0

// How long the plug-in's factory takes until its handler is bound, in a fresh process: bind_time <plug-in
// file>

#include <dlfcn.h>

#include <chrono>
#include <iostream>
#include <memory>

#include "zeb/api/KX_RPCHandler.h"

int main(int argc, char** argv)
{
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (library == nullptr)
        return 2;
    using Factory = zeb::api::KX_RPCHandler* (*)();
    const auto factory = reinterpret_cast<Factory>(dlsym(library, "RPCHandler"));

    const auto begin = std::chrono::steady_clock::now();
    const std::unique_ptr<zeb::api::KX_RPCHandler> handler(factory());
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - begin;
    if (!handler->isBound())
        return 1;
    std::cout << "bound after " << time.count() << " ms" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
}
