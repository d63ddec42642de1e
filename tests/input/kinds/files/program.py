import pandas

table = pandas.read_csv("chemostat.tsv", sep="\t")
print(table.describe())
