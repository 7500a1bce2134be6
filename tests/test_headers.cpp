// Nothing but the headers that the build reads ahead of all tests.
