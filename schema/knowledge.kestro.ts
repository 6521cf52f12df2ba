// The "knowledge" module: POST /api/app/knowledge/<action>.

module knowledge {
  brain;
  brainSource;
  brandAssets;
  brandFile;
  brandFrame;
  canvases;
  docs;
  interviews;
  memory;
  memoryFrame;
  report;
  research;
  teammateFile;
}
