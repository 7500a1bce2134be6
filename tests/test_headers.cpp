// SPDX-License-Identifier: GPL-3.0-or-later

// Nothing but the headers that the build reads ahead of all tests.
