// Nothing but what is compiled in advance for every test program; the main function is GoogleTest's.
