// Does nothing: its start is what is measured.
int main() { return 0; }
