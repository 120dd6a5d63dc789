// qxfb: the command-line host of the component (being built).
#include <cstdio>
int main() {
    std::puts("qxfb: not built yet");
    return 1;
}
