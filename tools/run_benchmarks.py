"""Runs all benchmark programs in a folder and writes their results to one JSON file.

Usage: run_benchmarks.py FOLDER RESULT.json FILTER. The filter is a regular expression of Google Benchmark.
"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path


def has_match(program, name_filter):
    listed = subprocess.run([program, "--benchmark_list_tests", f"--benchmark_filter={name_filter}"],
                            capture_output=True, text=True, check=False)
    return listed.returncode == 0 and bool(listed.stdout.strip())


def run(program, name_filter, folder):
    report = Path(folder) / (program.name + ".json")
    subprocess.run([program, f"--benchmark_filter={name_filter}", f"--benchmark_out={report}",
                    "--benchmark_out_format=json", "--benchmark_counters_tabular=true"], check=True)
    return json.loads(report.read_text())


def main():
    folder, result, name_filter = Path(sys.argv[1]).resolve(), Path(sys.argv[2]), sys.argv[3]
    programs = [program for program in sorted(folder.glob("bench_*")) if has_match(program, name_filter)]
    if not programs:
        print(f"no benchmark's name matches {name_filter}", file=sys.stderr)
        return 1
    whole = {"context": {}, "benchmarks": []}
    with tempfile.TemporaryDirectory() as reports:
        for program in programs:
            report = run(program, name_filter, reports)
            whole["context"] = report["context"]
            whole["benchmarks"] += report["benchmarks"]
    result.write_text(json.dumps(whole, indent=2) + "\n")
    print(f"{len(whole['benchmarks'])} results in {result}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
