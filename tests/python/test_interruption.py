"""Fits that are interrupted, that run beside other threads, and in forked processes."""

import os
import signal
import subprocess
import sys
import threading
import time
import warnings

import numpy as np
import pytest

import ovik

# A fit of hours, which says on its standard output when the first iteration is done.
ENDLESS_FIT = """
import signal, sys
import numpy, ovik
X = numpy.random.default_rng(1).normal(size=(400, 4))
try:
    ovik.TSNE(n_iter=1_000_000_000, verbose=True).fit(X)
except KeyboardInterrupt:
    sys.stderr.write("interrupted")
"""


def test_ctrl_c_ends_the_fit():
    with subprocess.Popen([sys.executable, "-c", ENDLESS_FIT], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE) as process:
        seen = b""
        while b"at iteration (" not in seen:
            seen += os.read(process.stdout.fileno(), 1000)
        process.send_signal(signal.SIGINT)
        _, err = process.communicate()
    assert err.endswith(b"interrupted")
    assert process.returncode == 0


def test_ctrl_c_ends_the_fit_of_a_sample():
    # The sample alone takes hours.
    X = np.random.default_rng(1).normal(size=(2000, 4))
    tsne = ovik.TSNE(n_iter=1_000_000_000, init="sample", n_jobs=1)

    def interrupt_soon():
        threading.Timer(0.3, os.kill, (os.getpid(), signal.SIGINT)).start()

    interrupt_soon()
    with pytest.raises(KeyboardInterrupt):
        tsne.fit(X)
    interrupt_soon()
    with pytest.warns(UserWarning, match="was interrupted at iteration 0"):
        tsne.set_params(on_interrupt="keep").fit(X)
    assert tsne.embedding_.std() > 0


# A fit that keeps its map, to be interrupted; it says what is left of it.
KEPT_FIT = """
import sys, warnings
import numpy, ovik
warnings.simplefilter("always")
X = numpy.random.default_rng(1).normal(size=(400, 4))
tsne = ovik.TSNE(n_iter=1_000_000_000, verbose=True, on_interrupt="keep", n_jobs=1).fit(X)
shorter = ovik.TSNE(n_iter=max(tsne.n_iter_, 1), n_jobs=1).fit(X)
assert numpy.array_equal(tsne.embedding_, shorter.embedding_)
sys.stderr.write(f"kept {tsne.n_iter_ + 1} {len(tsne.costs_)}")
"""


def test_ctrl_c_keeps_the_map_if_asked():
    with subprocess.Popen([sys.executable, "-c", KEPT_FIT], stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, text=True) as process:
        seen = ""
        while "at iteration (1/" not in seen:
            seen += os.read(process.stdout.fileno(), 1000).decode()
        process.send_signal(signal.SIGINT)
        _, err = process.communicate()
    assert process.returncode == 0, err
    assert "UserWarning: the fit was interrupted at iteration " in err
    done, costs = err.rsplit("kept ", 1)[1].split()
    assert done == costs


def test_map_in_early_exaggeration_is_told(points):
    def interrupt(iteration, error, embedding):
        os.kill(os.getpid(), signal.SIGINT)

    tsne = ovik.TSNE(n_iter=1000, callbacks=interrupt, on_interrupt="keep", n_jobs=1)
    with pytest.warns(UserWarning, match="early exaggeration has not ended") as warned:
        tsne.fit(points)
    assert warned[0].filename == __file__
    assert tsne.n_iter_ <= 50
    with pytest.raises(KeyboardInterrupt):
        tsne.set_params(on_interrupt="raise").fit(points)


@pytest.mark.parametrize("schedule", [
    {"stop_lying_iter": 6}, {"schedule": "annealed", "hold_iter": 3, "release_iter": 4},
])
@pytest.mark.parametrize("last, is_exaggerated", [(5, True), (6, False)])
def test_map_is_called_exaggerated_until_the_end_of_exaggeration(
    points, schedule, last, is_exaggerated
):
    def interrupt(iteration, error, embedding):
        if iteration == last:
            raise KeyboardInterrupt

    tsne = ovik.TSNE(callbacks=interrupt, callbacks_every_iters=1, on_interrupt="keep", n_jobs=1, **schedule)
    with pytest.warns(UserWarning, match="was interrupted at iteration") as warned:
        tsne.fit(points)
    assert tsne.n_iter_ == last
    assert ("exaggeration has not ended" in str(warned[0].message)) == is_exaggerated


def test_kept_map_is_there_where_warnings_are_errors(points):
    def interrupt(iteration, error, embedding):
        raise KeyboardInterrupt

    tsne = ovik.TSNE(callbacks=interrupt, on_interrupt="keep", n_jobs=1)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        with pytest.raises(UserWarning):
            tsne.fit(points)
    assert tsne.n_iter_ == 0 and tsne.embedding_.shape == (90, 2)


def test_other_exceptions_than_ctrl_c_are_not_kept(points):
    def fail(iteration, error, embedding):
        raise SystemExit(3)

    with pytest.raises(SystemExit):
        ovik.TSNE(callbacks=fail, on_interrupt="keep", n_jobs=1).fit(points)


def test_exception_of_a_signal_handler_ends_the_fit(points):
    class Alarm(Exception):
        pass

    def ring(number, frame):
        raise Alarm

    before = signal.signal(signal.SIGALRM, ring)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.2)
        with pytest.raises(Alarm):
            ovik.TSNE(n_iter=1_000_000_000).fit(points)
    finally:
        signal.signal(signal.SIGALRM, before)
    # The package is fit for the next one.
    assert ovik.TSNE(n_iter=3).fit(points).n_iter_ == 3


def test_other_threads_run_and_fits_give_what_each_gives_alone(points):
    expected = ovik.TSNE(n_iter=300).fit_transform(points)
    embeddings = [None] * 3

    def fit(n):
        embeddings[n] = ovik.TSNE(n_iter=300).fit_transform(points)

    threads = [threading.Thread(target=fit, args=(n,)) for n in range(len(embeddings))]
    for thread in threads:
        thread.start()
    turns = 0
    while any(thread.is_alive() for thread in threads):
        turns += 1
        time.sleep(0.001)  # spinning would hold the interpreter lock that the threads wait for
    assert turns > 0
    assert all(np.array_equal(embedding, expected) for embedding in embeddings)


def test_forked_process_fits_too(points):
    """Threads do not survive a fork: waiting for them would never end."""
    big = np.random.default_rng(2).normal(size=(3000, 4))
    expected = ovik.TSNE(n_iter=3, n_jobs=2).fit_transform(big)
    child = os.fork()
    if child == 0:
        signal.alarm(600)  # ends a child that hangs
        equal = np.array_equal(ovik.TSNE(n_iter=3, n_jobs=2).fit_transform(big), expected)
        os._exit(0 if equal else 1)
    assert os.waitpid(child, 0)[1] == 0
