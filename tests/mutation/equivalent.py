"""The mutants that no test can notice, by file and meaning, and why."""

EQUIVALENT = {
}
