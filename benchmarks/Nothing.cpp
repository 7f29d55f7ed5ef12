// The least program that can be started.

int main() { return 0; }
