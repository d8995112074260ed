# SPDX-License-Identifier: Apache-2.0
"""zorb-trust: keys, certificates, permissions and Cyclone DDS configuration for peers that trust each other."""
