# SPDX-License-Identifier: Apache-2.0
"""Dates of certificates and permissions; all in UTC."""

import datetime

from zorb_trust.problem import Problem

# A certificate is not valid before it begins; peers' clocks may be behind the one that it was made by.
CLOCK_TOLERANCE = datetime.timedelta(days=1)
# No clock that was ever set shows an earlier time.
FIRST_CREDIBLE = datetime.datetime(2020, 1, 1, tzinfo=datetime.timezone.utc)
# Seconds since 1970 leave 32 bits then, and with them the clocks of 32-bit devices.
LAST_POSSIBLE = datetime.datetime(2038, 1, 1, tzinfo=datetime.timezone.utc)
SOON = datetime.timedelta(days=30)


def now():
    return datetime.datetime.now(datetime.timezone.utc).replace(microsecond=0)


def clock_problem():
    """What is wrong with this machine's clock, or None."""
    time = now()
    if time < FIRST_CREDIBLE:
        return (
            "this machine's clock says %s, so every certificate counts as not yet valid: set the clock (a device "
            "without a battery needs NTP, or a time that it saves before it goes down)" % day(time)
        )
    return None


def require_clock():
    problem = clock_problem()
    if problem:
        raise Problem(problem)


def period(days):
    """From a little before now, for so many days."""
    start = now()
    try:
        end = start + datetime.timedelta(days=days)
    except OverflowError:
        end = datetime.datetime.max.replace(tzinfo=datetime.timezone.utc)
    if end > LAST_POSSIBLE:
        raise Problem(
            "%d days from now is after %s, beyond what the clock of a 32-bit device can show; take fewer --days"
            % (days, day(LAST_POSSIBLE))
        )
    return start - CLOCK_TOLERANCE, end


def day(time):
    return time.strftime("%Y-%m-%d")


def xml_text(time):
    return time.strftime("%Y-%m-%dT%H:%M:%SZ")


def from_xml_text(text):
    try:
        time = datetime.datetime.fromisoformat(text.strip().replace("Z", "+00:00"))
    except ValueError as error:
        raise Problem("'%s' is no date" % text) from error
    return time if time.tzinfo else time.replace(tzinfo=datetime.timezone.utc)


def openssl_text(time):
    return time.strftime("%Y%m%d%H%M%SZ")


def from_openssl_text(text):
    """As "openssl x509 -dates" prints it: Jan  2 03:04:05 2026 GMT."""
    time = datetime.datetime.strptime(text.strip(), "%b %d %H:%M:%S %Y GMT")
    return time.replace(tzinfo=datetime.timezone.utc)


def from_database_text(text):
    """As the database of "openssl ca" has it: YYMMDDHHMMSSZ, with four digits of the year from 2050 on."""
    layout = "%y%m%d%H%M%SZ" if len(text) == 13 else "%Y%m%d%H%M%SZ"
    return datetime.datetime.strptime(text, layout).replace(tzinfo=datetime.timezone.utc)
