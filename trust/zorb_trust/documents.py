# SPDX-License-Identifier: Apache-2.0
"""The two documents of DDS Security: governance (how a domain is protected), permissions (what one peer may do)."""

from xml.sax.saxutils import escape

from zorb_trust import dates

ANY_DOMAIN = "<domains><id_range><min>0</min><max>230</max></id_range></domains>"

# The topics of the RMI layer. A server reads requests, by which it announces its services, and writes replies; a host the
# reverse. The last one carries nothing: a writer of it wakes Cyclone DDS after a step of the system clock.
REQUESTS = "topic___*_request"
REPLIES = "topic___*_reply"
WAKE_UP = "DDS_RMI_wake_up"

WRITTEN_BY = {"host": [REQUESTS, WAKE_UP], "server": [REPLIES, WAKE_UP]}
READ_BY = {"host": [REPLIES], "server": [REQUESTS]}
ROLES = ("host", "server", "both")


def governance():
    """Nobody without a certificate; discovery, liveliness and every topic encrypted, reading and writing by right."""
    return """<?xml version="1.0" encoding="UTF-8"?>
<dds xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <domain_access_rules>
    <domain_rule>
      %s
      <allow_unauthenticated_participants>false</allow_unauthenticated_participants>
      <enable_join_access_control>true</enable_join_access_control>
      <discovery_protection_kind>ENCRYPT</discovery_protection_kind>
      <liveliness_protection_kind>ENCRYPT</liveliness_protection_kind>
      <rtps_protection_kind>SIGN</rtps_protection_kind>
      <topic_access_rules>
        <topic_rule>
          <topic_expression>*</topic_expression>
          <enable_discovery_protection>true</enable_discovery_protection>
          <enable_liveliness_protection>true</enable_liveliness_protection>
          <enable_read_access_control>true</enable_read_access_control>
          <enable_write_access_control>true</enable_write_access_control>
          <metadata_protection_kind>ENCRYPT</metadata_protection_kind>
          <data_protection_kind>NONE</data_protection_kind>
        </topic_rule>
      </topic_access_rules>
    </domain_rule>
  </domain_access_rules>
</dds>
""" % ANY_DOMAIN


def permissions(subject, role, start, end):
    """What `role` needs and nothing else, for the holder of the certificate with this subject."""
    roles = ("host", "server") if role == "both" else (role,)
    written = sorted({topic for one in roles for topic in WRITTEN_BY[one]})
    read = sorted({topic for one in roles for topic in READ_BY[one]})
    return """<?xml version="1.0" encoding="UTF-8"?>
<dds xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <permissions>
    <grant name="%s">
      <subject_name>%s</subject_name>
      <validity>
        <not_before>%s</not_before>
        <not_after>%s</not_after>
      </validity>
      <allow_rule>
        %s
        <publish>%s</publish>
        <subscribe>%s</subscribe>
      </allow_rule>
      <default>DENY</default>
    </grant>
  </permissions>
</dds>
""" % (role, escape(subject), dates.xml_text(start), dates.xml_text(end), ANY_DOMAIN, _topics(written), _topics(read))


def _topics(names):
    # Partitions are named anew by every process, so any will do; what a name stands for is guarded by the topic.
    topics = "".join("<topic>%s</topic>" % name for name in names)
    return "<topics>%s</topics><partitions><partition>*</partition></partitions>" % topics
