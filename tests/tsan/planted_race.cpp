#include <cstdio>
#include <omp.h>

/// A race on purpose: shows that the sanitizer sees what happens between OpenMP's threads.
int main() {
    int shared = 0;
#pragma omp parallel num_threads(2) default(none) shared(shared)
    { shared += omp_get_thread_num() + 1; }
    std::printf("%d\n", shared);
}
