// SPDX-License-Identifier: Apache-2.0
// HTTPS, with the clients that people use.
#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "temporary_folder.h"
#include "zorbd_process.h"

namespace {

using namespace host_test;
using test_support::ChildProcess;
using testing::HasSubstr;
using testing::Not;
using testing::Optional;

/// Authorities and certificates, made by openssl in a folder of the test's own.
class Certificates
{
public:
    Certificates()
    {
        make_authority("ca");
        make_authority("other-ca");
        issue("server", "ca");
        issue("client", "ca");
        issue("stranger", "other-ca");
    }

    std::string path(const std::string& file) const { return m_folder.path() / file; }

    /// `days` may be negative: the certificate has expired then.
    void issue(const std::string& name, const std::string& authority, int days = 30) const
    {
        run("openssl req -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=" + name +
            " -addext subjectAltName=IP:127.0.0.1 -keyout " + name +
            ".key -out request.pem && openssl x509 -req" + " -in request.pem -copy_extensions copyall -CA " +
            authority + ".pem -CAkey " + authority + ".key -days " + std::to_string(days) + " -out " + name +
            ".pem");
    }

    /// A certificate for the server's key, from 2036 on.
    void issue_for_the_future(const std::string& name, const std::string& authority) const
    {
        m_folder.write("account", "");
        m_folder.write("serial", "01\n");
        m_folder.write("openssl.cnf", "[ca]\ndefault_ca = own\n[own]\ndatabase = account\nserial = serial\n"
                                      "new_certs_dir = .\ndefault_md = sha256\npolicy = any\n"
                                      "[any]\ncommonName = supplied\n");
        run("openssl req -new -key server.key -subj /CN=" + name +
            " -out request.pem && openssl ca -config openssl.cnf -batch -notext -in request.pem -cert " +
            authority + ".pem -keyfile " + authority +
            ".key -startdate 20360101000000Z -enddate 20370101000000Z -out " + name + ".pem");
    }

    Options server_options() const
    {
        return {"--tls-certificate", path("server.pem"), "--tls-key", path("server.key")};
    }
    Options with_client_ca() const
    {
        Options options = server_options();
        options.insert(options.end(), {"--tls-client-ca", path("ca.pem")});
        return options;
    }

private:
    void make_authority(const std::string& name) const
    {
        run("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 30 -subj /CN=" +
            name + " -keyout " + name + ".key -out " + name + ".pem");
    }

    void run(const std::string& commands) const
    {
        ChildProcess shell({"sh", "-ec", "umask 077; cd '" + m_folder.path().string() + "'; " + commands});
        ASSERT_THAT(shell.wait_for_exit(), Optional(0)) << shell.error_output();
    }

    const test_support::TemporaryFolder m_folder;
};

class Https : public testing::Test
{
protected:
    /// What curl gets from /healthz, and what it complains of.
    std::string ask(const ZorbdProcess& zorbd, const Options& options = {}) const
    {
        Options command = {"curl",       "--silent", "--show-error", "--noproxy",           "*",
                           "--max-time", "60",       "--cacert",     m_files.path("ca.pem")};
        command.insert(command.end(), options.begin(), options.end());
        command.push_back("https://127.0.0.1:" + std::to_string(zorbd.port()) + "/healthz");
        ChildProcess curl(command);
        curl.wait_for_exit();
        return curl.output() + curl.error_output();
    }

    Options as_client(const std::string& name) const
    {
        return {"--cert", m_files.path(name + ".pem"), "--key", m_files.path(name + ".key")};
    }

    /// What openssl tells of a handshake with these options.
    std::string handshake(const ZorbdProcess& zorbd, const Options& options) const
    {
        Options command = {"openssl", "s_client", "-connect", "127.0.0.1:" + std::to_string(zorbd.port())};
        command.insert(command.end(), options.begin(), options.end());
        ChildProcess client(command);
        client.close_input();
        client.wait_for_exit();
        return client.output() + client.error_output();
    }

    /// What zorbd says when it does not start.
    static std::string complaint(const Options& options)
    {
        Options command = {"--listen", "127.0.0.1:0", "--plugin", plugin("served_methods")};
        command.insert(command.end(), options.begin(), options.end());
        ChildProcess zorbd = start_zorbd(command);
        EXPECT_THAT(zorbd.wait_for_exit(), Optional(1));
        return zorbd.error_output();
    }

    const Certificates m_files;
};

TEST_F(Https, answers_clients_that_know_its_authority)
{
    const ZorbdProcess zorbd(m_files.server_options());

    EXPECT_THAT(ask(zorbd), HasSubstr("\"status\":\"ok\""));
    EXPECT_THAT(zorbd.error_output(), HasSubstr("ready on https://127.0.0.1:"));
}

TEST_F(Https, is_not_plain_http)
{
    const ZorbdProcess zorbd(m_files.server_options());
    HttpConnection connection(zorbd.port());

    connection.send(get("/healthz"));

    connection.wait_closed();
}

TEST_F(Https, speaks_tls_1_2_and_1_3_and_nothing_older)
{
    const ZorbdProcess zorbd(m_files.server_options());

    EXPECT_THAT(handshake(zorbd, {"-tls1_2"}), HasSubstr("New, TLSv1.2"));
    EXPECT_THAT(handshake(zorbd, {"-tls1_3"}), HasSubstr("New, TLSv1.3"));
    EXPECT_THAT(handshake(zorbd, {"-tls1_1", "-cipher", "ALL:@SECLEVEL=0"}), HasSubstr("New, (NONE)"));
}

TEST_F(Https, has_no_cipher_without_forward_secrecy_or_authenticated_encryption)
{
    const ZorbdProcess zorbd(m_files.server_options());

    for (const char* const cipher : {"kRSA", "AES128-SHA", "ECDHE-ECDSA-AES128-SHA", "NULL", "aNULL"})
        EXPECT_THAT(handshake(zorbd, {"-tls1_2", "-cipher", std::string(cipher) + ":@SECLEVEL=0"}),
                    Not(HasSubstr("New, TLSv1.2")))
            << cipher;
}

TEST_F(Https, lets_no_client_renegotiate)
{
    const ZorbdProcess zorbd(m_files.server_options());
    ChildProcess client(
        {"openssl", "s_client", "-tls1_2", "-connect", "127.0.0.1:" + std::to_string(zorbd.port())});
    ASSERT_TRUE(client.wait_for_line("Verify return code"));

    client.write("R\n");

    EXPECT_TRUE(client.wait_for_error_line("RENEGOTIATING"));
    EXPECT_TRUE(client.wait_for_exit().value_or(0) != 0);
    EXPECT_THAT(ask(zorbd), HasSubstr("\"status\":\"ok\""));
}

TEST_F(Https, asks_every_client_for_a_certificate_of_its_authority)
{
    const ZorbdProcess zorbd(m_files.with_client_ca());
    m_files.issue("late", "ca", -1);

    EXPECT_THAT(ask(zorbd, as_client("client")), HasSubstr("\"status\":\"ok\""));
    EXPECT_THAT(ask(zorbd), Not(HasSubstr("status")));
    EXPECT_THAT(ask(zorbd, as_client("stranger")), Not(HasSubstr("status")));
    EXPECT_THAT(ask(zorbd, as_client("late")), Not(HasSubstr("status")));
}

TEST_F(Https, reads_its_files_again_on_sighup)
{
    ZorbdProcess zorbd(m_files.server_options());
    m_files.issue("server", "other-ca");

    zorbd.signal(SIGHUP);
    ASSERT_TRUE(zorbd.wait_for_error_line("read again"));

    EXPECT_THAT(ask(zorbd), HasSubstr("unable to get local issuer certificate"));
    EXPECT_THAT(ask(zorbd, {"--cacert", m_files.path("other-ca.pem")}), HasSubstr("\"status\":\"ok\""));
    EXPECT_THAT(zorbd.terminate(), Optional(0));
}

TEST_F(Https, keeps_what_it_has_when_the_new_files_are_no_good)
{
    ZorbdProcess zorbd(m_files.server_options());
    std::filesystem::resize_file(m_files.path("server.pem"), 100);

    zorbd.signal(SIGHUP);

    EXPECT_THAT(zorbd.wait_for_error_line("stays in use"), Optional(HasSubstr(m_files.path("server.pem"))));
    EXPECT_THAT(ask(zorbd), HasSubstr("\"status\":\"ok\""));
}

TEST_F(Https, asks_whether_the_clock_is_right_when_a_certificate_is_not_valid_yet)
{
    m_files.issue_for_the_future("early", "ca");

    EXPECT_THAT(
        complaint({"--tls-certificate", m_files.path("early.pem"), "--tls-key", m_files.path("server.key")}),
        HasSubstr(m_files.path("early.pem") + " is not valid yet; is this machine's clock right?"));
}

TEST_F(Https, names_the_file_that_it_cannot_begin_with)
{
    m_files.issue("late", "ca", -1);
    std::filesystem::copy(m_files.path("server.key"), m_files.path("open.key"));
    std::filesystem::permissions(m_files.path("open.key"), std::filesystem::perms(0644));
    std::filesystem::copy(m_files.path("server.pem"), m_files.path("cut.pem"));
    std::filesystem::resize_file(m_files.path("cut.pem"), 100);
    std::filesystem::copy(m_files.path("server.key"), m_files.path("cut.key"));
    std::filesystem::resize_file(m_files.path("cut.key"), 100);
    const auto with = [this](const std::string& certificate, const std::string& key) {
        return complaint({"--tls-certificate", m_files.path(certificate), "--tls-key", m_files.path(key)});
    };

    EXPECT_THAT(with("server.pem", "open.key"),
                HasSubstr("open.key is open to everyone; take that away with: chmod"));
    EXPECT_THAT(with("server.pem", "client.key"), HasSubstr("client.key does not belong to the certificate"));
    EXPECT_THAT(with("server.pem", "cut.key"), HasSubstr("cut.key holds no key in PEM form"));
    EXPECT_THAT(with("cut.pem", "server.key"), HasSubstr("cut.pem holds no certificate in PEM form"));
    EXPECT_THAT(with("late.pem", "late.key"), HasSubstr("late.pem has expired"));
    EXPECT_THAT(with("none.pem", "server.key"), HasSubstr("cannot read TLS certificate"));
    EXPECT_THAT(with("server.pem", "none.key"), HasSubstr("none.key: No such file"));
    Options options = m_files.server_options();
    options.insert(options.end(), {"--tls-client-ca", m_files.path("server.key")});
    EXPECT_THAT(complaint(options), HasSubstr("server.key holds no certificate"));
}

} // namespace
