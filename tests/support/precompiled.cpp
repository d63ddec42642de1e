// Compiled for the headers that its target precompiles for all tests.
