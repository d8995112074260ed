// SPDX-License-Identifier: Apache-2.0

// Answers calls over the D-Bus at the address that it is given with 0, until its standard input ends.

#include <sdbus-c++/sdbus-c++.h>

#include <cstdint>
#include <iostream>
#include <string>

#include "sdbus_names.h"

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const auto connection = sdbus::createSessionBusConnectionWithAddress(argv[1]);
    connection->requestName(BUS_NAME);
    const auto object = sdbus::createObject(*connection, BUS_OBJECT);
    object->registerMethod(BUS_METHOD)
        .onInterface(BUS_NAME)
        .implementedAs([](const std::string&, const std::string&) { return std::int32_t{0}; });
    object->finishRegistration();
    connection->enterEventLoopAsync();
    std::cout << "ready" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    connection->leaveEventLoop();
}
