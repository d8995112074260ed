// SPDX-License-Identifier: Apache-2.0
// Serves the interface Climate::Thermostat, with rooms that exist in memory only. SIGTERM and SIGINT end it.
#include <ddsrmi.h>
#include <signal.h>

#include <chrono>
#include <iostream>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "Thermostat_Interface.h"

namespace rmi = org::opensplice::DDS_RMI;
using namespace DDS_RMI::Climate;

// Its operations run on the runtime's threads, several at once.
class Thermostat : public ThermostatInterface
{
public:
    Thermostat()
    {
        m_rooms["attic"].temperature = 17.5;
        m_rooms["kitchen"].temperature = 21.0;
    }

    Names rooms() override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return names();
    }

    Reading measure(DDS::String room) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return find(room);
    }

    Reading set_target(DDS::String room, DDS::Double degrees) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        find(room).target = degrees;
        return find(room);
    }

    DDS::Long calibrate(DDS::String room) override
    {
        measure(room); // throws when there is no such room
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return 3;
    }

private:
    // The caller holds m_mutex.
    Names names() const
    {
        Names found;
        for (const auto& room : m_rooms)
            found.push_back(room.first);
        return found;
    }

    // The caller holds m_mutex.
    Reading& find(const std::string& room)
    {
        const auto found = m_rooms.find(room);
        if (found == m_rooms.end())
            throw NoSuchRoom(names());
        return found->second;
    }

    std::mutex m_mutex;
    std::map<std::string, Reading> m_rooms; // guarded by m_mutex
};

int main()
{
    // Blocked before any thread is started, so that they wait for sigwait() below.
    sigset_t stop_signals;
    sigemptyset(&stop_signals);
    sigaddset(&stop_signals, SIGTERM);
    sigaddset(&stop_signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &stop_signals, nullptr);

    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* options[] = {"thermostat_server", "--RMIServerThreadingModel=MT,4"};
    if (!runtime->start(2, options))
        return 1;
    rmi::DDS_Service::register_interface<ThermostatInterface, Thermostat>(
        rmi::shared_ptr<Thermostat>(new Thermostat), "Thermostat", 1);

    std::thread service([&runtime] { runtime->run(); });
    std::cout << "thermostat_server: serving" << std::endl;
    int received = 0;
    sigwait(&stop_signals, &received);
    runtime->shutdown();
    service.join();

    rmi::DDS_Service::unregister_interface("Thermostat", 1);
    runtime->stop();
}
