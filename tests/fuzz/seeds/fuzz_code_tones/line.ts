const a = f("x", 2.5); // c
