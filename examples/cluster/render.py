#!/usr/bin/python3
"""Renders a folder of documents on the workers of a Dask cluster. See README.md."""

import argparse
import json
import os
import pathlib
import subprocess
import sys

from distributed import Client, LocalCluster, as_completed


def render(command, document, pictures):
    """Runs on a worker. What was done before is passed over, so that it may be run again."""
    done = subprocess.run(
        [command, "render", document, "--out-dir", pictures, "--update", "--json", "-j1"],
        capture_output=True, text=True, check=False)
    lines = done.stdout.splitlines()
    return json.loads(lines[-1]) if lines else {"file": document, "error": done.stderr.strip()}


def client_of(options):
    if options.scheduler:
        return Client(options.scheduler)
    # Processes of their own: one that dies is replaced, and its documents go to the others.
    return Client(LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                               dashboard_address=None))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("documents", type=pathlib.Path)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("--scheduler", help="the address of a cluster's scheduler")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="without a scheduler")
    options = parser.parse_args()

    command = os.environ.get("KALIMKIT", "kalimkit")
    documents = sorted(str(path.resolve()) for path in options.documents.glob("*.kalim"))
    failures = 0
    with client_of(options) as client:
        futures = client.map(render, [command] * len(documents), documents,
                             [str(options.pictures.resolve())] * len(documents), pure=False)
        for future, document in zip(futures, documents):
            future.document = document
        for future in as_completed(futures):
            if future.status == "finished":
                result = future.result()
            else:
                result = {"file": future.document, "error": str(future.exception())}
            failures += "error" in result
            print(json.dumps(result, ensure_ascii=False), flush=True)
        if not options.scheduler:
            client.cluster.close()
    return 2 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
