// Contains only the headers that are compiled in advance for every test program; GoogleTest has the main
// function.
