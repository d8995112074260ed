// SPDX-License-Identifier: Apache-2.0
// Serves the interface of drill.idl until its standard input ends. A line "open" on standard input opens the
// gate of the operation "gated", "close" closes it.

#include <pthread.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <bitset>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>

#include "ddsrmi.h"
#include "drill_Interface.h"
#include "stamp.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;

/// Holds calls up; tells on standard output how many are there whenever one comes.
class Gate
{
public:
    void pass()
    {
        std::unique_lock lock(m_mutex);
        m_most = std::max(m_most, ++m_waiting);
        std::cout << "at the gate: " << m_waiting << std::endl;
        m_opened.wait(lock, [this] { return m_open; });
        --m_waiting;
    }

    void set_open(bool open)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_open = open;
        }
        m_opened.notify_all();
    }

    int most() const
    {
        const std::lock_guard lock(m_mutex);
        return m_most;
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_open = false; // this and the following are guarded by m_mutex
    int m_waiting = 0;
    int m_most = 0;
};

/// Which calls of stamp have been run. A million of them take little memory, so that a server's growth is
/// not its book's.
class StampBook
{
public:
    void enter(DDS::LongLong stamp)
    {
        const auto number = static_cast<std::uint64_t>(stamp);
        const std::lock_guard lock(m_mutex);
        ++m_runs;
        auto entry = m_pages[number / stamps_in_page][number % stamps_in_page];
        if (entry)
            ++m_repeats;
        entry = true;
    }
    DDS::ULong runs() const
    {
        const std::lock_guard lock(m_mutex);
        return m_runs;
    }
    DDS::ULong repeats() const
    {
        const std::lock_guard lock(m_mutex);
        return m_repeats;
    }

private:
    static constexpr std::size_t stamps_in_page = 4096;

    mutable std::mutex m_mutex; // guards all below
    std::unordered_map<std::uint64_t, std::bitset<stamps_in_page>> m_pages;
    DDS::ULong m_runs = 0;
    DDS::ULong m_repeats = 0;
};

class NoteBook
{
public:
    DDS::Long enter(DDS::Long number)
    {
        const std::lock_guard lock(m_mutex);
        if (number < m_highest)
            ++m_disorder;
        m_highest = std::max(m_highest, number);
        return number;
    }
    DDS::ULong disorder() const
    {
        const std::lock_guard lock(m_mutex);
        return m_disorder;
    }

private:
    mutable std::mutex m_mutex; // guards all below
    DDS::Long m_highest = 0;
    DDS::ULong m_disorder = 0;
};

DDS::String name_of_this_thread()
{
    std::array<char, 64> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return DDS::string_dup(name.data());
}

class Range : public DDS_RMI::Drill::RangeInterface
{
public:
    Range(DDS::Long instance, Gate& gate) : m_instance(instance), m_gate(gate) {}

    DDS::Long echo(DDS::Long value) override { return value; }
    DDS::String echo_text(DDS::String text) override { return DDS::string_dup(text); }

    DDS::LongLong stamp(DDS::Long caller, DDS::Long number) override
    {
        const DDS::LongLong stamp = drill::stamp(m_instance, caller, number);
        m_stamps.enter(stamp);
        return stamp;
    }
    DDS::ULong runs() override { return m_stamps.runs(); }
    DDS::ULong repeats() override { return m_stamps.repeats(); }

    DDS::Long gated(DDS::Long value) override
    {
        m_gate.pass();
        return value;
    }
    DDS::Long most_gated() override { return m_gate.most(); }

    DDS::Long fail(DDS::Long value) override
    {
        if (value % 2 == 0)
            throw std::runtime_error("a failure on purpose");
        throw value; // NOLINT(misc-throw-by-value-catch-by-reference): foreign code may throw anything
    }

    DDS::Long note_red(DDS::Long number) override { return m_notes.enter(number); }
    DDS::Long note_green(DDS::Long number) override { return m_notes.enter(number); }
    DDS::Long note_blue(DDS::Long number) override { return m_notes.enter(number); }
    DDS::ULong disorder() override { return m_notes.disorder(); }

    DDS::String thread_name() override { return name_of_this_thread(); }

private:
    const DDS::Long m_instance;
    Gate& m_gate;
    StampBook m_stamps;
    NoteBook m_notes;
};

void obey_standard_input(Gate& gate)
{
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line == "open" || line == "close")
            gate.set_open(line == "open");
    }
}

struct Options
{
    std::string service = "drill";
    DDS::Long instance = 1;
    std::string threads = "ST";
};

int serve(const Options& options)
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const std::string threading = "--RMIServerThreadingModel=" + options.threads;
    std::array<const char*, 2> arguments{"drill_server", threading.c_str()};
    Gate gate;
    const rmi::shared_ptr<Range> range(new Range(options.instance, gate));
    if (!runtime->start(arguments.size(), arguments.data()) ||
        !rmi::DDS_Service::register_interface<DDS_RMI::Drill::RangeInterface, Range>(range, options.service,
                                                                                     options.instance))
        return 1;
    std::thread serving([&runtime] { runtime->run(); });
    std::cout << "serving " << options.service << ' ' << options.instance << std::endl;
    obey_standard_input(gate);
    gate.set_open(true);
    runtime->shutdown();
    serving.join();
    return runtime->stop() ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    Options options;
    CLI::App app{"Serves the interface that the tests of the RMI layer call, until its standard input ends."};
    app.add_option("--service", options.service, "Name of the service")->capture_default_str();
    app.add_option("--instance", options.instance, "Instance number of the service")->capture_default_str();
    app.add_option("--threads", options.threads, "Threading model: ST, MT,<size> or TPS,<size>")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    return serve(options);
}
