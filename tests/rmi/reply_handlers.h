// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_REPLY_HANDLERS_H
#define TESTS_RMI_REPLY_HANDLERS_H

#include <functional>
#include <memory>
#include <utility>

#include "drill_InterfaceProxy.h"
#include "tally.h"

namespace drill {

namespace rmi = org::opensplice::DDS_RMI;

// NOLINTBEGIN(bugprone-macro-parentheses): a class's name cannot be in parentheses.
/// Reports its reply and its end to a tally; `then`, if any, is run in the reply hook after that.
/// (The operation's name is a part of those of its classes and functions.)
#define DRILL_HANDLER(Name, operation, Value)                                                                \
    class Name : public DDS_RMI::Drill::Range_##operation##_Reply_Handler                                    \
    {                                                                                                        \
    public:                                                                                                  \
        using Then = std::function<void()>;                                                                  \
        Name(std::shared_ptr<Tally> tally, Value expected, Then then = nullptr)                              \
            : m_tally(std::move(tally)), m_expected(expected), m_then(std::move(then))                       \
        {                                                                                                    \
        }                                                                                                    \
        ~Name() override { m_tally->on_release(); }                                                          \
        void operation##_Reply(Value result) override                                                        \
        {                                                                                                    \
            m_tally->on_reply(result == m_expected);                                                         \
            if (m_then)                                                                                      \
                m_then();                                                                                    \
        }                                                                                                    \
                                                                                                             \
    private:                                                                                                 \
        const std::shared_ptr<Tally> m_tally;                                                                \
        const Value m_expected;                                                                              \
        const Then m_then;                                                                                   \
    }

DRILL_HANDLER(EchoHandler, echo, DDS::Long);
DRILL_HANDLER(GatedHandler, gated, DDS::Long);
DRILL_HANDLER(GatedTextHandler, gated_text, DDS::ULong);
DRILL_HANDLER(WorkHandler, work, DDS::Long);
DRILL_HANDLER(FailHandler, fail, DDS::Long);
DRILL_HANDLER(NoteRedHandler, note_red, DDS::Long);
DRILL_HANDLER(NoteGreenHandler, note_green, DDS::Long);
DRILL_HANDLER(NoteBlueHandler, note_blue, DDS::Long);
#undef DRILL_HANDLER
// NOLINTEND(bugprone-macro-parentheses)

/// Does not look at the text that comes back.
class EchoTextHandler : public DDS_RMI::Drill::Range_echo_text_Reply_Handler
{
public:
    explicit EchoTextHandler(std::shared_ptr<Tally> tally) : m_tally(std::move(tally)) {}
    ~EchoTextHandler() override { m_tally->on_release(); }
    void echo_text_Reply(DDS::String /*result*/) override { m_tally->on_reply(true); }

private:
    const std::shared_ptr<Tally> m_tally;
};

} // namespace drill

#endif
