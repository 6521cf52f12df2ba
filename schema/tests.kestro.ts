// The "tests" module: POST /api/app/tests/<action>.

module tests {
  library;
  run;
  status;
  testPage;
}
