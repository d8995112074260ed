// SPDX-License-Identifier: Apache-2.0
// The file that describes a plug-in's methods: found beside its library, merged, and never the end of the
// host.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "json_matchers.h"
#include "temporary_folder.h"
#include "zorbd_process.h"

namespace {

using host_test::ask;
using host_test::call;
using host_test::plugin;
using host_test::post;
using test_support::TemporaryFolder;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* description = R"({"methods": [
    {"name": "echo", "summary": "Says it again", "params": [{"$ref": "#/components/text"}],
     "result": {"name": "result", "schema": {}}}],
  "components": {"text": {"name": "text", "required": true, "schema": {"type": "string"}}}})";

/// zorbd with a plug-in beside which a description stands; reached over a Unix socket.
class Described
{
public:
    explicit Described(const std::string& text, const host_test::Options& options = {})
        : m_process(start(text, options))
    {
        bound = m_process.wait_for_error_line("is bound and offers 7 methods").has_value();
    }

    std::string ask_for(const std::string& method, const std::string& params) const
    {
        return ask(socket(), post(call(method, params))).body;
    }

    std::string messages() const { return m_process.error_output(); }
    std::string file() const { return m_folder.path() / "libdescribed.openrpc.json"; }
    std::string socket() const { return m_folder.path() / "socket"; }

    bool bound = false;

private:
    test_support::ChildProcess start(const std::string& text, host_test::Options options)
    {
        m_folder.write("libdescribed.openrpc.json", text);
        const std::string library = m_folder.path() / "libdescribed.so";
        std::filesystem::copy_file(plugin("served_methods"), library);
        options.insert(options.end(), {"--unix-socket", socket(), "--plugin", library});
        return host_test::start_zorbd(options);
    }

    TemporaryFolder m_folder;
    test_support::ChildProcess m_process;
};

TEST(description, is_merged_into_what_rpc_discover_answers)
{
    const Described zorbd(description);

    const std::string document = zorbd.ask_for("rpc.discover", "{}");

    EXPECT_THAT(
        document,
        AllOf(HasSubstr(R"("servers":[{"name":"zorbd","url":"unix:)" + zorbd.socket() + R"("}])"),
              HasSubstr(
                  R"("name":"echo","params":[{"name":"text","required":true,"schema":{"type":"string"}}])"),
              HasSubstr(R"("summary":"Says it again")"), Not(HasSubstr("$ref"))));
}

TEST(description, decides_which_params_are_let_through)
{
    const Described zorbd(description);

    EXPECT_THAT(zorbd.ask_for("echo", R"({"text":"hello"})"), HasSubstr(R"("result":{"text":"hello"})"));
    EXPECT_THAT(zorbd.ask_for("echo", R"(["hello"])"), HasSubstr(R"("result":{"text":"hello"})"));
    EXPECT_THAT(zorbd.ask_for("echo", R"({"test":"hello"})"),
                AllOf(HasSubstr(R"("code":-32602)"), HasSubstr(R"("data":"echo: \"text\" is missing;)")));
    EXPECT_THAT(zorbd.ask_for("seven", R"({"any":"thing"})"), HasSubstr(R"("result":7)"));
}

TEST(description, lets_everything_through_when_params_are_not_to_be_checked)
{
    const Described zorbd(description, {"--check-params", "off"});

    EXPECT_THAT(zorbd.ask_for("echo", R"({"test":"hello"})"), HasSubstr(R"("result":{"test":"hello"})"));
    EXPECT_THAT(zorbd.ask_for("rpc.discover", "{}"), HasSubstr("Says it again"));
}

TEST(description, that_is_broken_is_told_of_and_nothing_ends)
{
    for (const char* broken :
         {"{", "[]", R"({"methods":[{}]})", R"({"methods":[{"name":"a","x":{"$ref":"#/y"}}]})",
          R"({"methods":[{"name":"a","x":{"$ref":"#/methods"}}]})"}) {
        const Described zorbd(broken);

        EXPECT_TRUE(zorbd.bound);
        EXPECT_THAT(zorbd.messages(), HasSubstr(zorbd.file() + " is broken: ")) << broken;
        EXPECT_THAT(zorbd.ask_for("seven", "{}"), HasSubstr(R"("result":7)"));
    }
}

TEST(description, that_is_missing_is_told_of)
{
    const host_test::ZorbdProcess zorbd;

    EXPECT_THAT(zorbd.error_output(),
                HasSubstr("its methods are not described in " +
                          plugin("served_methods").substr(0, plugin("served_methods").size() - 3) +
                          ".openrpc.json: No such file or directory"));
}

TEST(description, whose_schema_cannot_be_used_leaves_the_method_unchecked)
{
    const Described zorbd(
        R"({"methods":[{"name":"echo","params":[{"name":"text","schema":{"pattern":"("}}]}]})");

    EXPECT_THAT(zorbd.messages(), HasSubstr("parameters of echo are not checked: the schema of \"text\""));
    EXPECT_THAT(zorbd.ask_for("echo", R"({"a":1})"), HasSubstr(R"("result":{"a":1})"));
}

} // namespace
