// Linked with the whole of one layer library and the layers below it; it only has to link.
int main() {
    return 0;
}
