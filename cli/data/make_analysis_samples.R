# Writes sample data sets of the analysis commands from R's datasets
# package (classic published data, in the public domain).
# Run: Rscript make_analysis_samples.R   (in this folder)
w <- function(d, f) write.csv(d, f, row.names = FALSE, quote = TRUE)
w(InsectSprays, "insectsprays.csv")                   # Beall (1942)
w(data.frame(city = names(precip), precip = as.numeric(precip)), "precip.csv")
w(data.frame(drug1 = sleep$extra[1:10], drug2 = sleep$extra[11:20]),
  "sleep_paired.csv")                                 # Cushny and Peebles (1905)
w(ToothGrowth, "toothgrowth.csv")                     # Crampton (1947)
w(data.frame(year = 1875:1972, level = as.numeric(LakeHuron)), "lakehuron.csv")
ap <- AirPassengers                                   # Box and Jenkins (1976)
w(data.frame(year = floor(time(ap) + 1e-9), month = cycle(ap), passengers = as.numeric(ap)),
  "airpassengers.csv")
w(data.frame(year = 1860:1959, discoveries = as.numeric(discoveries)), "discoveries.csv")
