// SPDX-License-Identifier: Apache-2.0
// Serves the interface of drill.idl until its standard input ends. Lines on standard input move the gate of
// the operations "gated" and "gated_text": "open" opens it, "close" closes it, "pass 3" lets three calls
// through.

#include <pthread.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <atomic>
#include <bitset>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

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
        m_opened.wait(lock, [this] { return m_open || m_passes > 0; });
        m_passes -= m_open ? 0 : 1;
        --m_waiting;
    }
    void let_pass(int calls)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_passes += calls;
        }
        m_opened.notify_all();
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
    int m_passes = 0;    // calls that a closed gate still lets through
    int m_waiting = 0;
    int m_most = 0;
};

/// Which calls of stamp have been run. A million of them take little memory, so that a server's growth is
/// not its book's.
class StampBook
{
public:
    void enter(DDS::LongLong stamp, DDS::Long caller, DDS::Long number)
    {
        const auto bit = static_cast<std::uint64_t>(stamp);
        const std::lock_guard lock(m_mutex);
        ++m_runs;
        auto entry = m_pages[bit / stamps_in_page][bit % stamps_in_page];
        if (entry)
            ++m_repeats;
        entry = true;
        DDS::Long& highest = m_highest[caller];
        if (number < highest)
            ++m_out_of_order;
        highest = std::max(highest, number);
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
    DDS::ULong out_of_order() const
    {
        const std::lock_guard lock(m_mutex);
        return m_out_of_order;
    }

private:
    static constexpr std::size_t stamps_in_page = 4096;

    mutable std::mutex m_mutex; // guards all below
    std::unordered_map<std::uint64_t, std::bitset<stamps_in_page>> m_pages;
    std::unordered_map<DDS::Long, DDS::Long> m_highest; // number of each caller
    DDS::ULong m_runs = 0;
    DDS::ULong m_repeats = 0;
    DDS::ULong m_out_of_order = 0;
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
        m_stamps.enter(stamp, caller, number);
        return stamp;
    }
    DDS::ULong runs() override { return m_stamps.runs(); }
    DDS::ULong repeats() override { return m_stamps.repeats(); }
    DDS::ULong stamps_out_of_order() override { return m_stamps.out_of_order(); }

    DDS::Long gated(DDS::Long value) override
    {
        m_gate.pass();
        return value;
    }
    DDS::Long most_gated() override { return m_gate.most(); }
    DDS::ULong gated_text(DDS::String text) override
    {
        m_gate.pass();
        return static_cast<DDS::ULong>(std::strlen(text));
    }

    DDS::Long work(DDS::Long milliseconds) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        ++m_worked;
        return milliseconds;
    }
    DDS::ULong worked() override { return m_worked; }

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
    std::atomic<DDS::ULong> m_worked{0};
    StampBook m_stamps;
    NoteBook m_notes;
};

void obey_standard_input(Gate& gate)
{
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line == "open" || line == "close")
            gate.set_open(line == "open");
        else if (line.rfind("pass ", 0) == 0)
            gate.let_pass(std::stoi(line.substr(5)));
    }
}

struct Options
{
    std::string service = "drill";
    DDS::Long instance = 1;
    std::string threads = "ST";
    std::string queue_mib; // the layer's own limit unless given
};

int serve(const Options& options)
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const std::string threading = "--RMIServerThreadingModel=" + options.threads;
    const std::string limit = "--RMIServerQueueBytes=" + options.queue_mib;
    std::vector<const char*> arguments{"drill_server", threading.c_str()};
    if (!options.queue_mib.empty())
        arguments.push_back(limit.c_str());
    Gate gate;
    const rmi::shared_ptr<Range> range(new Range(options.instance, gate));
    if (!runtime->start(static_cast<int>(arguments.size()), arguments.data()) ||
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
    app.add_option("--queue-mib", options.queue_mib, "Most MiB of requests that wait for their turn");
    CLI11_PARSE(app, argc, argv);
    return serve(options);
}
