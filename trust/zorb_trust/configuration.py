# SPDX-License-Identifier: Apache-2.0
"""The configuration file of Cyclone DDS for one peer."""

import collections
import ipaddress
import re
from xml.sax.saxutils import escape, quoteattr

from zorb_trust.problem import Problem

CONFIGURATION = "cyclonedds.xml"

# What each setting of DDS Security is called in the configuration, and the file of a peer's folder that it names.
Setting = collections.namedtuple("Setting", "section name file")
SETTINGS = (
    Setting("Authentication", "IdentityCA", "identity_ca.pem"),
    Setting("Authentication", "IdentityCertificate", "identity.pem"),
    Setting("Authentication", "PrivateKey", "identity.key"),
    Setting("Authentication", "CRL", "revoked.pem"),
    Setting("AccessControl", "PermissionsCA", "permissions_ca.pem"),
    Setting("AccessControl", "Governance", "governance.p7s"),
    Setting("AccessControl", "Permissions", "permissions.p7s"),
)
FILE_OF = {setting.name: setting.file for setting in SETTINGS}

_LIBRARIES = {
    "Authentication": '<Library initFunction="init_authentication" finalizeFunction="finalize_authentication" '
    'path="dds_security_auth"/>',
    "AccessControl": '<Library initFunction="init_access_control" finalizeFunction="finalize_access_control" '
    'path="dds_security_ac"/>',
    "Cryptographic": '<Library initFunction="init_crypto" finalizeFunction="finalize_crypto" '
    'path="dds_security_crypto"/>',
}


# interface: name of the network interface; peers: addresses, or none for multicast; domain: "any" or a number.
Network = collections.namedtuple("Network", "interface peers domain")


def network(interface, peers, domain):
    if not re.fullmatch(r"[A-Za-z0-9._:@-]{1,15}", interface):
        raise Problem("'%s' is no name of a network interface (see: ip -brief address)" % interface)
    for peer in peers:
        _require_host(peer)
    if domain != "any" and not (domain.isdigit() and int(domain) <= 230):
        raise Problem("--domain takes a number from 0 to 230, or any, not '%s'" % domain)
    if interface == "lo" and not peers:
        peers = ["127.0.0.1"]
    return Network(interface, list(peers), domain)


def _require_host(text):
    try:
        ipaddress.ip_address(text)
    except ValueError as error:
        if not re.fullmatch(r"[A-Za-z0-9]([A-Za-z0-9.-]{0,251}[A-Za-z0-9])?", text):
            raise Problem("--peer takes an address or the name of a host, not '%s'" % text) from error


def configuration(at, chosen):
    """`at` is the folder where the peer keeps the files."""
    return """<?xml version="1.0" encoding="UTF-8"?>
<!-- Use it with CYCLONEDDS_URI=file://%s/%s -->
<CycloneDDS xmlns="https://cdds.io/config">
  <Domain Id=%s>
    <General>
      <Interfaces>
        <NetworkInterface name=%s/>
      </Interfaces>
      <AllowMulticast>%s</AllowMulticast>
    </General>
    <Discovery>
      <SPDPInterval>2s</SPDPInterval>
%s    </Discovery>
    <Security>
%s    </Security>
  </Domain>
</CycloneDDS>
""" % (
        escape(at),
        CONFIGURATION,
        quoteattr(chosen.domain),
        quoteattr(chosen.interface),
        "false" if chosen.peers else "true",
        _peers(chosen.peers),
        _security(at),
    )


def _peers(addresses):
    if not addresses:
        return ""
    peers = "".join("        <Peer address=%s/>\n" % quoteattr(address) for address in addresses)
    return (
        "      <ParticipantIndex>auto</ParticipantIndex>\n"
        "      <MaxAutoParticipantIndex>100</MaxAutoParticipantIndex>\n"
        "      <Peers>\n%s      </Peers>\n" % peers
    )


def _security(at):
    text = ""
    for section, library in _LIBRARIES.items():
        text += "      <%s>\n        %s\n" % (section, library)
        for setting in SETTINGS:
            if setting.section == section:
                text += "        <%s>file:%s/%s</%s>\n" % (setting.name, escape(at), setting.file, setting.name)
        text += "      </%s>\n" % section
    return text
